#include <util/dataset/KudDatasetVariableFilter.h>

namespace
{
template <class Value>
bool assign(Value& field, const Value& value)
{
    if (field == value) {
        return false;
    }
    field = value;
    return true;
}
} // namespace

bool KudDatasetVariableFilter::acceptSupport(const HbdESupport& support, const QString& name) const
{
    return m_authorizedSupports.contains(support) &&
           (m_authorizedSupportNames.isEmpty() || m_authorizedSupportNames.contains(name));
}

bool KudDatasetVariableFilter::setAuthorizedSupports(const HbdSupportFlags& supports)
{
    return assign(m_authorizedSupports, supports);
}

bool KudDatasetVariableFilter::setAuthorizedSupportNames(const QStringList& names)
{
    return assign(m_authorizedSupportNames, names);
}

bool KudDatasetVariableFilter::setAuthorizedTypes(const HbdVarTypeFlags& types)
{
    return assign(m_authorizedTypes, types);
}

bool KudDatasetVariableFilter::setAuthorizedCompounds(const HbdCompoundTypeFlags& compounds)
{
    return assign(m_authorizedCompounds, compounds);
}
