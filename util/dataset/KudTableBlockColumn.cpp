#include "KudTableBlockColumn.h"

#include <util/dataset/KudTableUtils.h>

#include "KudTableBlockForm.h"
#include "KudTableUtilsNumbers.h"

#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>

#include <QtCore/QAbstractItemModel>

#include <array>
#include <charconv>
#include <type_traits>
#include <unordered_map>

namespace
{
std::array<bool, 256> specialBytes()
{
    std::array<bool, 256> special{};
    for (const char byte : {'\t', '\n', '\r', '"', '&', '<', '>'})
        special[static_cast<unsigned char>(byte)] = true;
    return special;
}

/// The shortest form of a number that reads back as the same.
class Digits
{
public:
    template <class Number>
    explicit Digits(Number number)
    {
        char* const begin = m_bytes.data();
        m_size = std::to_chars(begin, begin + m_bytes.size(), number).ptr - begin;
    }
    std::string_view text() const { return {m_bytes.data(), std::size_t(m_size)}; }

private:
    std::array<char, 32> m_bytes;
    std::ptrdiff_t m_size;
};

/// Reals of both sizes, and integers, which are reals in another unit.
template <class Column>
class NumberColumn : public KudTableBlockColumn
{
public:
    NumberColumn(const Column& column, QChar decimal)
        : m_column(column)
        , m_transfo(KudTableUtilsNumbers::shownTransfo(column.getDetails()))
        , m_isConverted(!m_transfo.isIdentity())
    {
        KudTableBlockForm::appendUtf8(m_decimal, QStringView(&decimal, 1));
        m_isOwnText = !m_isConverted && (std::is_integral_v<Value> || m_decimal == ".");
    }

    void render(const int* ranks, int count) override
    {
        m_texts.clear();
        m_own.clear();
        for (int i = 0; i < count; ++i) {
            if (ranks[i] < 0 || m_column.isUndefined(ranks[i])) {
                m_texts.appendPlain({});
                m_own.appendPlain({});
                continue;
            }
            const auto value = m_column.at(ranks[i]);
            const Digits digits(value);
            if (m_isOwnText) {
                m_texts.appendPlain(digits.text());
                continue;
            }
            m_own.appendPlain(digits.text());
            appendText(m_isConverted ? Digits(shown(value)) : digits);
        }
    }

private:
    using Value = typename Column::Value;

    auto shown(Value value) const
    {
        using Shown = std::conditional_t<std::is_integral_v<Value>, double, Value>;
        return static_cast<Shown>(m_transfo.apply(double(value)));
    }

    void appendText(const Digits& digits)
    {
        const std::string_view text = digits.text();
        const std::size_t point = text.find('.');
        if (point == std::string_view::npos)
            return m_texts.appendPlain(text);
        m_localized.assign(text.substr(0, point));
        m_localized += m_decimal;
        m_localized += text.substr(point + 1);
        m_texts.append(m_localized);
    }

    const Column& m_column;
    HbuUnitTransfo m_transfo;
    bool m_isConverted;
    std::string m_decimal;
    std::string m_localized;
};

class TextColumn : public KudTableBlockColumn
{
public:
    explicit TextColumn(const HbdVariableText& column)
        : m_column(column)
    {
    }

    void render(const int* ranks, int count) override
    {
        m_texts.clear();
        m_own.clear();
        for (int i = 0; i < count; ++i) {
            const QString text = ranks[i] < 0 ? QString() : m_column.at(ranks[i]);
            m_text.clear();
            m_escaped.clear();
            KudTableBlockForm::appendUtf8(m_text, text);
            KudTableBlockForm::appendEscaped(m_escaped, text);
            if (text.isEmpty() && !text.isNull())
                m_escaped = KudTableBlockForm::EMPTY_TEXT;
            m_texts.append(m_text);
            m_own.appendPlain(m_escaped);
        }
    }

private:
    const HbdVariableText& m_column;
    std::string m_text;
    std::string m_escaped;
};

/// Kinds of which people see a text and we store an integer. Few different values are usual, so the
/// texts are kept.
template <class Column>
class CodedColumn : public KudTableBlockColumn
{
public:
    explicit CodedColumn(const Column& column)
        : m_column(column)
    {
    }

    void render(const int* ranks, int count) override
    {
        m_texts.clear();
        m_own.clear();
        for (int i = 0; i < count; ++i) {
            if (ranks[i] < 0 || m_column.isUndefined(ranks[i])) {
                m_texts.appendPlain({});
                m_own.appendPlain({});
                continue;
            }
            m_texts.append(textOf(ranks[i]));
            m_own.appendPlain(Digits(static_cast<qint64>(m_column.at(ranks[i]))).text());
        }
    }

private:
    const std::string& textOf(int rank)
    {
        constexpr std::size_t MANY = 10000; // dates are hardly ever the same
        if (m_kept.size() > MANY)
            m_kept.clear();
        const auto [place, isNew] = m_kept.try_emplace(m_column.at(rank));
        if (isNew) {
            const QVariant text = KudTableUtils::valueToRole(Qt::DisplayRole, m_column, rank);
            KudTableBlockForm::appendUtf8(place->second, text.toString());
        }
        return place->second;
    }

    const Column& m_column;
    std::unordered_map<typename Column::Value, std::string> m_kept;
};

class ModelColumn : public KudTableBlockColumn
{
public:
    ModelColumn(const QAbstractItemModel& model, int column)
        : m_model(model)
        , m_modelColumn(column)
        , m_cells(HbdVariableDetails(QString(), HbdEVarType::TEXT))
        , m_column(m_cells)
    {
    }

    void render(const int* rows, int count) override
    {
        m_cells.resize(count);
        m_ranks.resize(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const QVariant cell = m_model.data(m_model.index(rows[i], m_modelColumn));
            m_cells.setVariant(i, cell);
            m_ranks[static_cast<std::size_t>(i)] = i;
        }
        m_column.render(m_ranks.data(), count);
        m_texts = m_column.getTexts();
        m_own = m_column.getOwn();
    }

private:
    const QAbstractItemModel& m_model;
    int m_modelColumn;
    HbdVariableText m_cells;
    TextColumn m_column;
    std::vector<int> m_ranks;
};

template <class Column>
const Column& as(const HbdAVariable& column)
{
    return static_cast<const Column&>(column);
}
} // namespace

void KudTableBlockCells::clear()
{
    m_bytes.clear();
    m_cells.clear();
}

void KudTableBlockCells::append(std::string_view text)
{
    static const std::array<bool, 256> SPECIAL = specialBytes();
    bool isSpecial = false;
    for (const char byte : text)
        isSpecial |= SPECIAL[static_cast<unsigned char>(byte)];
    m_bytes += text;
    m_cells.push_back({m_bytes.size(), isSpecial});
}

void KudTableBlockCells::appendPlain(std::string_view text)
{
    m_bytes += text;
    m_cells.push_back({m_bytes.size(), false});
}

KudTableBlockColumn::~KudTableBlockColumn() = default;

std::unique_ptr<KudTableBlockColumn> KudTableBlockColumn::create(const HbdAVariable& column,
                                                                 QChar decimal)
{
    switch (column.getType().toEnum()) {
    case HbdEVarType::E_REAL_32:
        return std::make_unique<NumberColumn<HbdVariableReal32>>(as<HbdVariableReal32>(column),
                                                                 decimal);
    case HbdEVarType::E_INTEGER:
        return std::make_unique<NumberColumn<HbdVariableInteger>>(as<HbdVariableInteger>(column),
                                                                  decimal);
    case HbdEVarType::E_TEXT:
        return std::make_unique<TextColumn>(as<HbdVariableText>(column));
    case HbdEVarType::E_CATEGORY:
        return std::make_unique<CodedColumn<HbdVariableEnum>>(as<HbdVariableEnum>(column));
    case HbdEVarType::E_COLOR:
        return std::make_unique<CodedColumn<HbdVariableColor>>(as<HbdVariableColor>(column));
    case HbdEVarType::E_ALPHA_CHANNEL:
        return std::make_unique<CodedColumn<HbdVariableAlpha>>(as<HbdVariableAlpha>(column));
    case HbdEVarType::E_SELECTION:
        return std::make_unique<CodedColumn<HbdVariableSelection>>(
            as<HbdVariableSelection>(column));
    case HbdEVarType::E_DATE:
        return std::make_unique<CodedColumn<HbdVariableDate>>(as<HbdVariableDate>(column));
    default:
        return std::make_unique<NumberColumn<HbdVariableReal>>(as<HbdVariableReal>(column),
                                                               decimal);
    }
}
std::unique_ptr<KudTableBlockColumn> KudTableBlockColumn::create(const QAbstractItemModel& model,
                                                                 int column)
{
    return std::make_unique<ModelColumn>(model, column);
}
