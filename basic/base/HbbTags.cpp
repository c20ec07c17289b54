#include <basic/base/HbbTags.h>

#include <algorithm>

HbbTags::HbbTags(const QString& tag)
{
    add(tag);
}

HbbTags::HbbTags(const QStringList& tags)
{
    for (const QString& tag : tags)
        add(tag);
}

HbbTags::HbbTags(std::initializer_list<QString> tags)
{
    for (const QString& tag : tags)
        add(tag);
}

bool HbbTags::add(const QString& tag)
{
    if (tag.isEmpty() || contains(tag))
        return false;
    m_tags.append(tag);
    return true;
}

void HbbTags::add(const HbbTags& tags)
{
    const QStringList added = tags.m_tags; // `tags` may be this set
    for (const QString& tag : added)
        add(tag);
}

bool HbbTags::remove(const QString& tag)
{
    return m_tags.removeOne(tag);
}

void HbbTags::remove(const HbbTags& tags)
{
    const QStringList removed = tags.m_tags;
    for (const QString& tag : removed)
        remove(tag);
}

bool HbbTags::contains(const HbbTags& tags) const
{
    return std::all_of(tags.m_tags.begin(), tags.m_tags.end(),
                       [this](const QString& tag) { return contains(tag); });
}

bool HbbTags::intersects(const HbbTags& tags) const
{
    return std::any_of(tags.m_tags.begin(), tags.m_tags.end(),
                       [this](const QString& tag) { return contains(tag); });
}
