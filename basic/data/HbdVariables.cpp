// The kinds of columns. Their destructors stand here, so that each kind's type information lives
// in this library alone.
#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>

#define HBD_DEFINE_KIND(Class, TYPE)                                                               \
    Class::Class(const HbdVariableDetails& details)                                                \
        : HbdTypedVariable(details, HbdEVarType::TYPE)                                             \
    {                                                                                              \
    }                                                                                              \
    Class::~Class() = default;

HBD_DEFINE_KIND(HbdVariableReal, REAL)
HBD_DEFINE_KIND(HbdVariableReal32, REAL_32)
HBD_DEFINE_KIND(HbdVariableInteger, INTEGER)
HBD_DEFINE_KIND(HbdVariableText, TEXT)
HBD_DEFINE_KIND(HbdVariableEnum, CATEGORY)
HBD_DEFINE_KIND(HbdVariableColor, COLOR)
HBD_DEFINE_KIND(HbdVariableAlpha, ALPHA_CHANNEL)
HBD_DEFINE_KIND(HbdVariableSelection, SELECTION)
HBD_DEFINE_KIND(HbdVariableDate, DATE)

void HbdVariableReal::readNumbers(int first, int count, double* numbers) const
{
    const HbdSpan<const double> values = getValues().sub(first, count);
    std::transform(values.begin(), values.end(), numbers, &HbbGlobal::normalized);
}

void HbdVariableReal32::readNumbers(int first, int count, double* numbers) const
{
    const HbdSpan<const float> values = getValues().sub(first, count);
    std::transform(values.begin(), values.end(), numbers,
                   [](float value) { return HbbGlobal::normalized(static_cast<double>(value)); });
}

void HbdVariableInteger::readNumbers(int first, int count, double* numbers) const
{
    const HbdSpan<const qint64> values = getValues().sub(first, count);
    std::transform(values.begin(), values.end(), numbers, [](qint64 value) {
        return HbbGlobal::isUndefined(value) ? HbbGlobal::D_FFFF : static_cast<double>(value);
    });
}

void HbdVariableReal::writeNumbers(int first, int count, const double* numbers)
{
    std::transform(numbers, numbers + count, editValues().begin() + first, &HbbGlobal::normalized);
}

void HbdVariableReal32::writeNumbers(int first, int count, const double* numbers)
{
    std::transform(numbers, numbers + count, editValues().begin() + first,
                   &HbdValueTraits::Real32::fromNumber);
}

void HbdVariableInteger::writeNumbers(int first, int count, const double* numbers)
{
    std::transform(numbers, numbers + count, editValues().begin() + first,
                   &HbdValueTraits::Integer::fromNumber);
}

void HbdVariableEnum::append(const HbdAVariable& other)
{
    const int first = getCount();
    const int count = other.getCount();
    HbdTypedVariable::append(other);
    if (other.getType() == getType())
        adoptCodes(static_cast<const HbdVariableEnum&>(other).getCatalog(), first, count);
}

bool HbdVariableEnum::copyValues(int firstRank, const HbdAVariable& source, int sourceRank,
                                 int count)
{
    if (!HbdTypedVariable::copyValues(firstRank, source, sourceRank, count))
        return false;
    adoptCodes(static_cast<const HbdVariableEnum&>(source).getCatalog(), firstRank, count);
    return true;
}

void HbdVariableEnum::adoptCodes(const HbdEnumCatalog& theirs, int first, int count)
{
    if (theirs == m_catalog)
        return;

    // Two catalogues may give one label different codes: translate code by code, once.
    std::vector<quint16> translated(HbdEnumCatalog::UNDEFINED_CODE + 1);
    for (std::size_t code = 0; code < translated.size(); ++code)
        translated[code] = static_cast<quint16>(code);
    for (const HbdEnumCatalog::Category& category : theirs.getCategories())
        translated[category.code] = m_catalog.findOrAdd(category.label);
    for (int rank = first; rank < first + count; ++rank)
        set(rank, translated[at(rank)]);
}

quint16 HbdVariableEnum::toCode(const QVariant& value) const
{
    if (value.type() == QVariant::String) {
        const quint16 code = m_catalog.getCode(value.toString());
        if (code != HbdEnumCatalog::UNDEFINED_CODE)
            return code;
    }
    return HbdValueTraits::Code::fromVariant(value);
}

QVariant HbdVariableEnum::getVariant(int rank) const
{
    const quint16 code = at(rank);
    return m_catalog.containsCode(code) ? QVariant(m_catalog.getLabel(code))
                                        : HbdValueTraits::Code::toVariant(code);
}

void HbdVariableEnum::setVariant(int rank, const QVariant& value)
{
    set(rank, toCode(value));
}

void HbdVariableEnum::setVariants(int firstRank, const QVariant* const* values, int count)
{
    for (int i = 0; i < count; ++i)
        set(firstRank + i, values[i] ? toCode(*values[i]) : getUndefined());
}

std::unique_ptr<HbdAVariable> HbdVariableEnum::createEmpty() const
{
    std::unique_ptr<HbdAVariable> empty = HbdTypedVariable::createEmpty();
    static_cast<HbdVariableEnum&>(*empty).setCatalog(m_catalog);
    return empty;
}

bool HbdVariableEnum::_hasEqualValues(const HbdAVariable& other) const
{
    return HbdTypedVariable::_hasEqualValues(other) &&
           m_catalog == static_cast<const HbdVariableEnum&>(other).m_catalog;
}
