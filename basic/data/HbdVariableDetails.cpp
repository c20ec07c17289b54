#include <basic/data/HbdVariableDetails.h>

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
