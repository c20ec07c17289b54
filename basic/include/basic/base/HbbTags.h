#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QStringList>

/// A set of texts that remembers the order in which they came. Empty texts and repeated ones are
/// not stored; comparison is exact, and two sets are equal whatever the order of their tags. Sets
/// are small: operations are linear.
class KELVANE_BASIC_EXPORT HbbTags
{
public:
    HbbTags() = default;
    HbbTags(const QString& tag);
    HbbTags(const QStringList& tags);
    HbbTags(std::initializer_list<QString> tags);

    /// Answers whether the tag is new.
    bool add(const QString& tag);
    void add(const HbbTags& tags);
    /// Answers whether the tag was there.
    bool remove(const QString& tag);
    void remove(const HbbTags& tags);
    void clear() { m_tags.clear(); }

    bool isEmpty() const { return m_tags.isEmpty(); }
    int count() const { return m_tags.size(); }
    bool contains(const QString& tag) const { return m_tags.contains(tag); }
    /// Every one of them; true for the empty set.
    bool contains(const HbbTags& tags) const;
    /// At least one in common.
    bool intersects(const HbbTags& tags) const;

    const QStringList& toStringList() const { return m_tags; }

    friend bool operator==(const HbbTags& a, const HbbTags& b)
    {
        return a.count() == b.count() && a.contains(b);
    }
    friend bool operator!=(const HbbTags& a, const HbbTags& b) { return !(a == b); }

private:
    QStringList m_tags;
};
