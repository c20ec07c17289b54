#pragma once

#include <util/dataset/KudInlineVector.h>

#include <algorithm>
#include <functional>
#include <utility>

/// A map kept as a sorted vector, whose only entry lies in place (see KudInlineVector). For the few
/// entries of a notice: finding is O(log n), inserting O(n).
template <class Key, class Value>
class KudInlineMap
{
public:
    struct Entry {
        Key key;
        Value value;
    };

    int size() const { return m_entries.size(); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    void clear() { m_entries.clear(); }
    const Entry* begin() const { return m_entries.begin(); }
    const Entry* end() const { return m_entries.end(); }

    /// Null when absent.
    const Value* find(const Key& key) const
    {
        const int i = _lowerBound(key);
        return _isAt(i, key) ? &std::as_const(m_entries)[i].value : nullptr;
    }
    Value* find(const Key& key)
    {
        const int i = _lowerBound(key);
        return _isAt(i, key) ? &m_entries[i].value : nullptr;
    }
    /// Adds the key or replaces its value.
    void insert(const Key& key, Value value)
    {
        const int i = _lowerBound(key);
        if (_isAt(i, key)) {
            m_entries[i].value = std::move(value);
        } else {
            m_entries.insert(i, Entry{key, std::move(value)});
        }
    }

private:
    int _lowerBound(const Key& key) const
    {
        const auto isBefore = [](const Entry& entry, const Key& k) {
            return std::less<Key>()(entry.key, k);
        };
        const Entry* found = std::lower_bound(begin(), end(), key, isBefore);
        return static_cast<int>(found - begin());
    }
    bool _isAt(int i, const Key& key) const
    {
        return i < size() && std::as_const(m_entries)[i].key == key;
    }

    KudInlineVector<Entry> m_entries;
};
