#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuId.h>

#include <QtCore/QList>
#include <QtCore/QSharedDataPointer>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

class KuuMementoData;

/// The saved state of one object: its id, a version, fields (text key to variant, in key order) and
/// the mementos of the objects that belong to it or are used by it, grouped by their relation.
/// Undo keeps mementos in memory, projects keep them as XML files (KuxXmlMementoFile).
///
/// A value: implicitly shared, a copy costs one reference count, a change to one copy leaves the
/// others alone. Like any value, one object is used by one thread at a time.
class KELVANE_UTIL_EXPORT KuuMemento
{
public:
    /// The version of a memento that nobody has set.
    static constexpr int DEFAULT_VERSION = 100;

    KuuMemento();
    explicit KuuMemento(const KuuId& id);
    /// The state of `other` (version, fields, associations, shared ids) under the new id.
    KuuMemento(const KuuId& id, const KuuMemento& other);
    KuuMemento(const KuuMemento&);
    KuuMemento(KuuMemento&&) noexcept;
    KuuMemento& operator=(const KuuMemento&);
    KuuMemento& operator=(KuuMemento&&) noexcept;
    ~KuuMemento();

    const KuuId& getId() const;
    int getVersion() const;
    void setVersion(int version);
    /// True when the id is valid.
    bool isValid() const;

    /// The invalid variant when there is no such field.
    QVariant getField(const QString& key) const;
    bool hasField(const QString& key) const;
    const QVariantMap& getFields() const;
    void setField(const QString& key, const QVariant& value);
    /// Replaces all fields.
    void setFields(const QVariantMap& fields);
    void removeField(const QString& key);

    /// Puts `memento` into the list of its own relation: in place of the one with an equal id, else
    /// at the end. `shared` marks its id as held by reference by several owners; once marked, an id
    /// stays marked.
    void setAssociation(const KuuMemento& memento, bool shared);
    /// Appends without looking for an equal id: for readers of long lists, whose ids are unique.
    void appendAssociation(const KuuMemento& memento);
    /// In insertion order; empty when there are none.
    QList<KuuMemento> getAssociations(const QString& relation) const;
    /// The first of the relation. Ask only for a relation that is there (hasRelation); of any other
    /// the answer is an empty, invalid memento.
    KuuMemento getAssociation(const QString& relation) const;
    bool hasRelation(const QString& relation) const;
    /// The relations that have associations, in key order.
    QStringList getRelations() const;
    void removeAssociations(const QString& relation);

    bool isShared(const KuuId& id) const;
    const QList<KuuId>& getSharedIds() const;

private:
    QSharedDataPointer<KuuMementoData> m_data;
};
Q_DECLARE_TYPEINFO(KuuMemento, Q_MOVABLE_TYPE);

/// Equal in id, version, fields (as QVariant compares them), associations and shared ids.
KELVANE_UTIL_EXPORT bool operator==(const KuuMemento& a, const KuuMemento& b);
inline bool operator!=(const KuuMemento& a, const KuuMemento& b)
{
    return !(a == b);
}
