#include <util/dataset/KudSampleOrder.h>

#include "KudSampleOrderRadix.h"

#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>

#include <QtCore/QCollator>
#include <QtCore/QHash>

#include <cstring>

namespace
{
/// Unsigned numbers in the order of the values.
quint64 keyOf(double value)
{
    value += 0.0; // -0.0 equals 0.0
    quint64 bits;
    std::memcpy(&bits, &value, sizeof(bits));
    constexpr quint64 SIGN = quint64(1) << 63;
    return (bits & SIGN) != 0 ? ~bits : bits | SIGN;
}

quint32 keyOf(float value)
{
    value += 0.0F;
    quint32 bits;
    std::memcpy(&bits, &value, sizeof(bits));
    constexpr quint32 SIGN = quint32(1) << 31;
    return (bits & SIGN) != 0 ? ~bits : bits | SIGN;
}

quint64 keyOf(qint64 value)
{
    return quint64(value) ^ (quint64(1) << 63);
}

quint32 keyOf(quint32 value)
{
    return value;
}

quint32 keyOf(quint8 value)
{
    return value;
}

/// The samples to sort, and those without a value.
template <class Key>
struct Split {
    std::vector<KudSortedSample<Key>> defined;
    std::vector<int> undefined;
};

/// Pairs each rank with `getKey(rank)`, where `isDefined(rank)`.
template <class IsDefined, class GetKey>
auto split(const std::vector<int>& ranks, IsDefined isDefined, GetKey getKey)
{
    Split<decltype(getKey(0))> samples;
    samples.defined.reserve(ranks.size());
    for (const int rank : ranks) {
        if (isDefined(rank))
            samples.defined.push_back({getKey(rank), rank});
        else
            samples.undefined.push_back(rank);
    }
    return samples;
}

/// Sorts by the keys and returns the ranks; `toFinal` makes of each key what is compared.
template <class Key, class ToFinal>
void sortSplit(Split<Key>& samples, Qt::SortOrder order, std::vector<int>& ranks, ToFinal toFinal)
{
    const Key flip = order == Qt::AscendingOrder ? Key(0) : Key(~Key(0)); // keeps equals in order
    for (KudSortedSample<Key>& sample : samples.defined)
        sample.key = Key(toFinal(sample.key) ^ flip);
    KudSampleOrderRadix<Key>::sort(samples.defined);
    const auto end = std::transform(samples.defined.begin(), samples.defined.end(), ranks.begin(),
                                    [](const KudSortedSample<Key>& sample) { return sample.rank; });
    std::copy(samples.undefined.begin(), samples.undefined.end(), end);
}

template <class Column>
void sortByValues(std::vector<int>& ranks, const Column& column, Qt::SortOrder order)
{
    const auto* values = column.getValues().data();
    auto samples = split(
        ranks, [values](int rank) { return !Column::isUndefinedValue(values[rank]); },
        [values](int rank) { return keyOf(values[rank]); });
    sortSplit(samples, order, ranks, [](auto key) { return key; });
}

/// Numbers in a text count as such. The C locale has no order for people: English stands in.
QCollator getCollator()
{
    QCollator collator;
    if (collator.locale() == QLocale::c())
        collator.setLocale(QLocale(QLocale::English));
    collator.setNumericMode(true);
    return collator;
}

/// The place of each text among all, from 0. Different texts that people take for equal stand by
/// their characters, so that a column's equal texts stand together.
std::vector<quint32> placesOf(const std::vector<QString>& texts)
{
    struct Entry {
        QCollatorSortKey key;
        quint32 index;
    };
    const QCollator collator = getCollator();
    std::vector<Entry> entries;
    entries.reserve(texts.size());
    for (const QString& text : texts)
        entries.push_back({collator.sortKey(text), quint32(entries.size())});
    std::sort(entries.begin(), entries.end(), [&texts](const Entry& left, const Entry& right) {
        const int compared = left.key.compare(right.key);
        return compared != 0 ? compared < 0 : texts[left.index] < texts[right.index];
    });
    std::vector<quint32> places(texts.size());
    for (std::size_t place = 0; place < entries.size(); ++place)
        places[entries[place].index] = quint32(place);
    return places;
}

/// Each distinct text is made ready for comparing once.
void sortByTexts(std::vector<int>& ranks, const HbdVariableText& column, Qt::SortOrder order)
{
    const QString* values = column.getValues().data();
    std::vector<QString> texts;
    QHash<QString, quint32> known;
    auto samples = split(
        ranks, [values](int rank) { return !values[rank].isNull(); },
        [&](int rank) {
            const QString& text = values[rank];
            const auto found = known.constFind(text);
            if (found != known.constEnd())
                return *found;
            const auto index = quint32(texts.size());
            known.insert(text, index);
            texts.push_back(text);
            return index;
        });
    const std::vector<quint32> places = placesOf(texts);
    sortSplit(samples, order, ranks, [&places](quint32 index) { return places[index]; });
}

/// The place of each code that occurs, by its label, or by the number that is shown without one.
std::vector<quint32> placesOfCodes(const std::vector<int>& ranks, const HbdVariableEnum& column)
{
    constexpr quint32 CODE_COUNT = HbdEnumCatalog::UNDEFINED_CODE;
    const quint16* codes = column.getValues().data();
    std::vector<bool> occurs(CODE_COUNT + 1);
    for (const int rank : ranks)
        occurs[codes[rank]] = true;
    std::vector<quint16> present;
    std::vector<QString> labels;
    const HbdEnumCatalog& catalog = column.getCatalog();
    for (quint32 i = 0; i < CODE_COUNT; ++i) {
        if (!occurs[i])
            continue;
        const auto code = quint16(i);
        present.push_back(code);
        labels.push_back(catalog.containsCode(code) ? catalog.getLabel(code) : QString::number(i));
    }
    const std::vector<quint32> places = placesOf(labels);
    std::vector<quint32> placeByCode(CODE_COUNT);
    for (std::size_t i = 0; i < present.size(); ++i)
        placeByCode[present[i]] = places[i];
    return placeByCode;
}

void sortByLabels(std::vector<int>& ranks, const HbdVariableEnum& column, Qt::SortOrder order)
{
    const quint16* codes = column.getValues().data();
    auto samples = split(
        ranks, [codes](int rank) { return codes[rank] != HbdEnumCatalog::UNDEFINED_CODE; },
        [codes](int rank) { return quint32(codes[rank]); });
    const std::vector<quint32> places = placesOfCodes(ranks, column);
    sortSplit(samples, order, ranks, [&places](quint32 code) { return places[code]; });
}
} // namespace

void KudSampleOrder::sort(std::vector<int>& ranks, const HbdAVariable& column, Qt::SortOrder order)
{
    switch (column.getType().toEnum()) {
    case HbdEVarType::E_REAL:
        return sortByValues(ranks, static_cast<const HbdVariableReal&>(column), order);
    case HbdEVarType::E_REAL_32:
        return sortByValues(ranks, static_cast<const HbdVariableReal32&>(column), order);
    case HbdEVarType::E_INTEGER:
        return sortByValues(ranks, static_cast<const HbdVariableInteger&>(column), order);
    case HbdEVarType::E_TEXT:
        return sortByTexts(ranks, static_cast<const HbdVariableText&>(column), order);
    case HbdEVarType::E_CATEGORY:
        return sortByLabels(ranks, static_cast<const HbdVariableEnum&>(column), order);
    case HbdEVarType::E_COLOR:
        return sortByValues(ranks, static_cast<const HbdVariableColor&>(column), order);
    case HbdEVarType::E_ALPHA_CHANNEL:
        return sortByValues(ranks, static_cast<const HbdVariableAlpha&>(column), order);
    case HbdEVarType::E_SELECTION:
        return sortByValues(ranks, static_cast<const HbdVariableSelection&>(column), order);
    case HbdEVarType::E_DATE:
        return sortByValues(ranks, static_cast<const HbdVariableDate&>(column), order);
    }
}
