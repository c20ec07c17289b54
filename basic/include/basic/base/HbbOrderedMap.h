#pragma once

#include <QtCore/QHash>
#include <QtCore/QList>

#include <initializer_list>
#include <iterator>
#include <list>
#include <utility>

/// A map that iterates in the order of insertion. Look-up, insertion and removal are O(1); keys
/// need qHash and ==. A value type; references to values stay valid until their entry is removed.
///
///     for (const auto& [key, value] : map) …
template <class Key, class Value>
class HbbOrderedMap
{
public:
    using Entry = std::pair<const Key, Value>;
    using Entries = std::list<Entry>;
    using iterator = typename Entries::iterator;
    using const_iterator = typename Entries::const_iterator;

    HbbOrderedMap() = default;
    HbbOrderedMap(std::initializer_list<Entry> entries)
    {
        for (const Entry& entry : entries)
            insert(entry.first, entry.second);
    }
    HbbOrderedMap(const HbbOrderedMap& other)
        : m_entries(other.m_entries)
    {
        for (iterator it = m_entries.begin(); it != m_entries.end(); ++it)
            m_index.insert(it->first, it);
    }
    /// The list keeps its nodes when it moves, so the index stays true.
    HbbOrderedMap(HbbOrderedMap&& other) { swap(other); }
    HbbOrderedMap& operator=(HbbOrderedMap other)
    {
        swap(other);
        return *this;
    }
    ~HbbOrderedMap() = default;

    void swap(HbbOrderedMap& other)
    {
        m_entries.swap(other.m_entries);
        m_index.swap(other.m_index);
    }

    int size() const { return m_index.size(); }
    int count() const { return m_index.size(); }
    bool isEmpty() const { return m_index.isEmpty(); }
    bool contains(const Key& key) const { return m_index.contains(key); }

    /// The value, or the default when there is no such key.
    Value value(const Key& key, const Value& defaultValue = Value()) const
    {
        const auto found = m_index.constFind(key);
        return found == m_index.constEnd() ? defaultValue : (*found)->second;
    }
    /// The value, or null when there is no such key; borrowed.
    const Value* find(const Key& key) const
    {
        const auto found = m_index.constFind(key);
        return found == m_index.constEnd() ? nullptr : &(*found)->second;
    }
    Value* find(const Key& key)
    {
        return const_cast<Value*>(static_cast<const HbbOrderedMap*>(this)->find(key));
    }
    /// The value; a missing key is inserted at the end with a default value.
    Value& operator[](const Key& key)
    {
        Value* found = find(key);
        return found ? *found : append(key, Value());
    }

    /// Appends the entry; a key that is there already keeps its place and takes the new value.
    void insert(const Key& key, const Value& value)
    {
        if (Value* found = find(key))
            *found = value;
        else
            append(key, value);
    }
    /// Answers whether the key was there.
    bool remove(const Key& key)
    {
        const auto found = m_index.find(key);
        if (found == m_index.end())
            return false;
        const iterator entry = *found;
        m_index.erase(found); // first: `key` may live in the entry
        m_entries.erase(entry);
        return true;
    }
    void clear()
    {
        m_index.clear();
        m_entries.clear();
    }

    QList<Key> keys() const
    {
        QList<Key> keys;
        keys.reserve(size());
        for (const Entry& entry : m_entries)
            keys.append(entry.first);
        return keys;
    }
    QList<Value> values() const
    {
        QList<Value> values;
        values.reserve(size());
        for (const Entry& entry : m_entries)
            values.append(entry.second);
        return values;
    }

    iterator begin() { return m_entries.begin(); }
    iterator end() { return m_entries.end(); }
    const_iterator begin() const { return m_entries.begin(); }
    const_iterator end() const { return m_entries.end(); }

    /// The same entries in the same order.
    friend bool operator==(const HbbOrderedMap& a, const HbbOrderedMap& b)
    {
        return a.m_entries == b.m_entries;
    }
    friend bool operator!=(const HbbOrderedMap& a, const HbbOrderedMap& b) { return !(a == b); }

private:
    Value& append(const Key& key, const Value& value)
    {
        m_entries.emplace_back(key, value);
        const iterator entry = std::prev(m_entries.end());
        m_index.insert(entry->first, entry);
        return entry->second;
    }

    Entries m_entries;
    QHash<Key, iterator> m_index;
};
