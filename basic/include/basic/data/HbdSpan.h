#pragma once

/// A view of contiguous values that somebody else owns; it ends when the owner changes its size.
template <class T>
class HbdSpan
{
public:
    constexpr HbdSpan() = default;
    constexpr HbdSpan(T* data, int size)
        : m_data(data)
        , m_size(size)
    {
    }

    constexpr T* data() const { return m_data; }
    constexpr int size() const { return m_size; }
    constexpr bool isEmpty() const { return m_size == 0; }
    constexpr T& operator[](int i) const { return m_data[i]; }
    constexpr T* begin() const { return m_data; }
    constexpr T* end() const { return m_data + m_size; }

    /// The part of `count` values from `first` on.
    constexpr HbdSpan sub(int first, int count) const { return HbdSpan(m_data + first, count); }

private:
    T* m_data = nullptr;
    int m_size = 0;
};
