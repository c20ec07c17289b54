#include <basic/data/HbdVariableDetails.h>

#include <basic/base/HbbStringFormat.h>
#include <basic/unit/HbuUnitService.h>

#include <cmath>
#include <tuple>

namespace
{
auto fields(const HbdVariableDetails& d)
{
    return std::tie(d.name, d.type, d.role, d.support, d.tags, d.unit, d.displayUnit, d.format,
                    d.automaticFormat, d.precision, d.width, d.catalogId, d.colorScaleId,
                    d.temporary);
}
} // namespace

HbdVariableDetails::HbdVariableDetails(const QString& variableName, const HbdEVarType& variableType,
                                       const HbdEVarRole& variableRole)
    : name(variableName)
    , type(variableType)
    , role(variableRole)
{
}

bool HbdVariableDetails::operator==(const HbdVariableDetails& other) const
{
    return fields(*this) == fields(other);
}

HbdVariableDetails HbdVariableDetails::shownIn(const HbuUnit& other) const
{
    HbdVariableDetails result = *this;
    const HbuUnitTransfo conversion =
        HbuUnitService::getInstance().getConversion(getShownUnit(), other);
    if (!conversion.isValid())
        return result;
    result.displayUnit = other;
    if (conversion.isIdentity())
        return result;
    const bool isInteger = type == HbdEVarType::INTEGER && format != HbbEFormat::DECIMAL;
    if (isInteger || format == HbbEFormat::INTEGER) {
        result.format = HbbEFormat::DECIMAL;
        result.precision = 0;
    }
    if (result.format == HbbEFormat::DECIMAL) {
        // A factor of exactly a power of ten must not count as one more for its rounding.
        const double digits = std::ceil(-std::log10(std::fabs(conversion.getFactor())) - 1e-9);
        result.precision =
            HbbStringFormat::getPrecision(result.precision) + std::max(0, static_cast<int>(digits));
    }
    return result;
}
