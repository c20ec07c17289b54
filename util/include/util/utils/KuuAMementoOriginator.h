#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuId.h>
#include <util/utils/KuuMemento.h>

/// Base of every persistent object: it has an identity and can write its state into a memento and
/// take it back. Two originators are equal when their ids are equal.
///
/// How a class lists its fields once for both directions: KuuMementoFields.h.
class KELVANE_UTIL_EXPORT KuuAMementoOriginator
{
public:
    /// A new object: the id is generated.
    explicit KuuAMementoOriginator(const QString& relation);
    explicit KuuAMementoOriginator(const KuuId& id);
    /// A copy has the same id, and assignment copies the id.
    KuuAMementoOriginator(const KuuAMementoOriginator&) = default;
    KuuAMementoOriginator& operator=(const KuuAMementoOriginator&) = default;
    virtual ~KuuAMementoOriginator();

    const KuuId& getId() const { return m_id; }

    KuuMemento getMemento() const;

    /// Takes the state of a memento of this object's relation; any other memento is ignored. With
    /// `adoptId` the object becomes the one that was saved: it takes its id, too. Without, it only
    /// takes the state (to copy the look of one object onto another).
    /// A memento of a newer version than this class writes is read as far as it is known, with a
    /// warning.
    void setMemento(const KuuMemento& memento, bool adoptId);

    friend bool operator==(const KuuAMementoOriginator& a, const KuuAMementoOriginator& b)
    {
        return a.m_id == b.m_id;
    }
    friend bool operator!=(const KuuAMementoOriginator& a, const KuuAMementoOriginator& b)
    {
        return !(a == b);
    }

protected:
    void setId(const KuuId& id) { m_id = id; }

    /// The version that this class writes.
    virtual int _getMementoVersion() const = 0;
    /// Writes the fields and associations into `memento`, whose id and version are set.
    virtual void _buildMemento(KuuMemento& memento) const = 0;
    /// Reads them back. `adoptId` as in setMemento; the id itself is taken already.
    virtual void _setMemento(const KuuMemento& memento, bool adoptId) = 0;

private:
    KuuId m_id;
};
