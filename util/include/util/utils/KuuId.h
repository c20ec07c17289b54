#pragma once

#include <util/KuExport.h>

#include <QtCore/QHashFunctions>
#include <QtCore/QString>
#include <QtCore/QUuid>

/// The identity of a memento originator: its relation, which names the kind of object ("Style",
/// "Scene"; each originating class fixes its own), and a uuid. A value.
class KELVANE_UTIL_EXPORT KuuId
{
public:
    /// Empty relation, null uuid: not valid.
    KuuId() = default;
    /// Null uuid: not valid until a uuid is given.
    explicit KuuId(const QString& relation);
    /// A text that is no uuid (with or without braces) gives the null uuid.
    KuuId(const QString& relation, const QString& uuid);

    /// A new id with a fresh random uuid.
    static KuuId generate(const QString& relation);

    const QString& getRelation() const { return m_relation; }
    /// The uuid as text without braces, in lower case.
    QString getUuid() const { return m_uuid.toString(QUuid::WithoutBraces); }

    /// True when the relation is not empty and the uuid is not null.
    bool isValid() const { return !m_relation.isEmpty() && !m_uuid.isNull(); }

    friend bool operator==(const KuuId& a, const KuuId& b)
    {
        return a.m_uuid == b.m_uuid && a.m_relation == b.m_relation;
    }
    friend bool operator!=(const KuuId& a, const KuuId& b) { return !(a == b); }

    /// Ids sort by uuid alone: of two ids with one uuid and different relations neither is less.
    /// So a sorted container keyed by KuuId holds one relation only.
    friend bool operator<(const KuuId& a, const KuuId& b) { return a.m_uuid < b.m_uuid; }
    friend bool operator>(const KuuId& a, const KuuId& b) { return b.m_uuid < a.m_uuid; }

    friend uint qHash(const KuuId& id, uint seed = 0) { return qHash(id.m_uuid, seed); }

private:
    QString m_relation;
    QUuid m_uuid;
};
Q_DECLARE_TYPEINFO(KuuId, Q_MOVABLE_TYPE);
