#pragma once

#include <util/KuExport.h>

#include <basic/base/HbbTags.h>
#include <basic/data/HbdCompoundTypeFlags.h>
#include <basic/data/HbdSupportFlags.h>
#include <basic/data/HbdVarRoleFlags.h>
#include <basic/data/HbdVarTypeFlags.h>

#include <QtCore/QStringList>

/// Which variables a caller wants; a value. By default all of them.
class KELVANE_UTIL_EXPORT KudDatasetVariableFilter
{
public:
    bool acceptSupport(const HbdESupport& support, const QString& name) const;
    bool acceptType(const HbdEVarType& type) const { return m_authorizedTypes.contains(type); }
    bool acceptRole(const HbdEVarRole& role) const { return !m_discardedRoles.contains(role); }
    bool acceptTags(const HbbTags& tags) const { return !m_discardedTags.intersects(tags); }
    bool acceptTemporary(bool isTemporary) const { return !isTemporary || !m_discardTemporary; }
    bool acceptCompound(const HbdECompoundType& type) const
    {
        return m_authorizedCompounds.contains(type);
    }

    const HbdSupportFlags& getAuthorizedSupports() const { return m_authorizedSupports; }
    /// Empty: every name.
    const QStringList& getAuthorizedSupportNames() const { return m_authorizedSupportNames; }
    const HbdVarTypeFlags& getAuthorizedTypes() const { return m_authorizedTypes; }
    const HbdVarRoleFlags& getDiscardedRoles() const { return m_discardedRoles; }
    const HbbTags& getDiscardedTags() const { return m_discardedTags; }
    bool isTemporaryDiscarded() const { return m_discardTemporary; }
    const HbdCompoundTypeFlags& getAuthorizedCompounds() const { return m_authorizedCompounds; }
    /// Whether plain variables are unwanted.
    bool acceptOnlyCompound() const { return m_acceptOnlyCompound; }

    // These answer whether the value changed.
    bool setAuthorizedSupports(const HbdSupportFlags& supports);
    bool setAuthorizedSupportNames(const QStringList& names);
    bool setAuthorizedTypes(const HbdVarTypeFlags& types);
    bool setAuthorizedCompounds(const HbdCompoundTypeFlags& compounds);

    void discardRoles(const HbdVarRoleFlags& roles) { m_discardedRoles = roles; }
    void discardTags(const HbbTags& tags) { m_discardedTags = tags; }
    void discardTemporary(bool discard) { m_discardTemporary = discard; }
    void setAcceptOnlyCompound(bool only) { m_acceptOnlyCompound = only; }

private:
    HbdSupportFlags m_authorizedSupports = HbdSupportFlags::ANY;
    QStringList m_authorizedSupportNames;
    HbdVarTypeFlags m_authorizedTypes = HbdVarTypeFlags::ANY;
    HbdVarRoleFlags m_discardedRoles;
    HbbTags m_discardedTags;
    bool m_discardTemporary = false;
    HbdCompoundTypeFlags m_authorizedCompounds = HbdCompoundTypeFlags::ANY;
    bool m_acceptOnlyCompound = false;
};
