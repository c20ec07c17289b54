#pragma once

#include <QtCore/QVector>

#include <optional>
#include <utility>

/// A vector whose only element, when there is but one, lies in place, without allocation; more are
/// implicitly shared, so that a copy costs O(1). For notices, most of which say one thing.
template <class T>
class KudInlineVector
{
public:
    KudInlineVector() = default;
    KudInlineVector(const KudInlineVector&) = default;
    KudInlineVector(KudInlineVector&& other) noexcept
        : m_one(std::move(other.m_one))
        , m_many(std::move(other.m_many))
    {
        other.m_one.reset();
    }
    KudInlineVector& operator=(const KudInlineVector&) = default;
    KudInlineVector& operator=(KudInlineVector&& other) noexcept
    {
        m_one = std::move(other.m_one);
        other.m_one.reset();
        m_many = std::exchange(other.m_many, QVector<T>());
        return *this;
    }
    ~KudInlineVector() = default;

    int size() const { return m_one ? 1 : m_many.size(); }
    bool isEmpty() const { return !m_one && m_many.isEmpty(); }

    const T* begin() const { return m_one ? &*m_one : m_many.constData(); }
    const T* end() const { return begin() + size(); }
    T* begin() { return m_one ? &*m_one : m_many.data(); }
    const T& operator[](int i) const { return begin()[i]; }
    T& operator[](int i) { return begin()[i]; }

    /// Before appending several elements to an empty vector.
    void reserve(int count)
    {
        if (count > 1 && isEmpty()) {
            m_many.reserve(count);
        }
    }
    void append(T value)
    {
        if (_isRoomInPlace()) {
            m_one.emplace(std::move(value));
            return;
        }
        _leavePlace();
        m_many.append(std::move(value));
    }
    void insert(int i, T value)
    {
        if (_isRoomInPlace()) {
            m_one.emplace(std::move(value));
            return;
        }
        _leavePlace();
        m_many.insert(i, std::move(value));
    }
    void clear() { *this = KudInlineVector(); }

private:
    bool _isRoomInPlace() const { return !m_one && m_many.capacity() == 0; }
    void _leavePlace()
    {
        if (m_one) {
            m_many.append(std::move(*m_one));
            m_one.reset();
        }
    }

    std::optional<T> m_one;
    QVector<T> m_many; // empty while m_one holds the element
};
