#pragma once

#include <util/dataset/KudADataset.h>
#include <util/dataset/KudDatasetBorrowing.h>

#include <cstddef>
#include <type_traits>
#include <utility>

/// A dataset borrowed from the registry (KudDatasetRegistry), or null. A value: each copy is a
/// borrowing of its own under the same borrower name and returns it when it goes; the dataset ends
/// with the last of them.
///
///     const KudDatasetPointer<KudMemoryDatasetPoint> wells(key, "3D view");
///     if (wells)
///         wells->getPointTable()->…
///
/// When the dataset leaves the registry all the same (clearRemainingDatasets), its pointers hold it
/// during the notice and are null from then on, even when another dataset comes under the key.
/// Main thread only; a pointer may outlive everything, to the end of the process.
template <class T>
class KudDatasetPointer
{
    template <class U>
    using IfConvertible = std::enable_if_t<std::is_convertible_v<U*, T*>>;

public:
    KudDatasetPointer() noexcept = default;
    KudDatasetPointer(std::nullptr_t) noexcept {}

    /// Borrows the dataset of that key; null when there is none, or it is no T. The borrower says
    /// who holds it, for people who look for what was not returned; an empty name is a programming
    /// error.
    KudDatasetPointer(const QString& key, const QString& borrower);

    /// To a base, and to const.
    template <class U, class = IfConvertible<U>>
    KudDatasetPointer(const KudDatasetPointer<U>& other)
        : m_borrowing(other.m_borrowing)
    {
    }
    template <class U, class = IfConvertible<U>>
    KudDatasetPointer(KudDatasetPointer<U>&& other) noexcept
        : m_borrowing(std::move(other.m_borrowing))
    {
    }

    /// A borrowing of the same dataset under another name: for who keeps what he was handed.
    template <class U, class = IfConvertible<U>>
    KudDatasetPointer(const KudDatasetPointer<U>& other, const QString& borrower)
        : m_borrowing(other.m_borrowing, borrower)
    {
    }

    /// The same dataset as a U; null when it is none.
    template <class U>
    KudDatasetPointer<U> dynamicCast() const;

    T* get() const noexcept { return static_cast<T*>(m_borrowing.dataset()); }
    T* operator->() const noexcept { return get(); }
    T& operator*() const noexcept { return *get(); }
    explicit operator bool() const noexcept { return get() != nullptr; }

    /// The key under which the dataset was borrowed, even when it is gone; empty without any.
    QString getKey() const { return m_borrowing.key(); }
    const QString& getBorrower() const noexcept { return m_borrowing.borrower(); }

    /// Returns the borrowing.
    void reset() noexcept { m_borrowing = KudDatasetBorrowing(); }
    void swap(KudDatasetPointer& other) noexcept { m_borrowing.swap(other.m_borrowing); }
    friend void swap(KudDatasetPointer& a, KudDatasetPointer& b) noexcept { a.swap(b); }

private:
    template <class U>
    friend class KudDatasetPointer;

    KudDatasetBorrowing m_borrowing; // of a T
};

/// \name Pointers are equal when they point to the same dataset, or both to none
/// @{
template <class T, class U>
bool operator==(const KudDatasetPointer<T>& a, const KudDatasetPointer<U>& b) noexcept
{
    return a.get() == b.get();
}
template <class T, class U>
bool operator!=(const KudDatasetPointer<T>& a, const KudDatasetPointer<U>& b) noexcept
{
    return !(a == b);
}
template <class T>
bool operator==(const KudDatasetPointer<T>& a, std::nullptr_t) noexcept
{
    return !a;
}
template <class T>
bool operator!=(const KudDatasetPointer<T>& a, std::nullptr_t) noexcept
{
    return bool(a);
}
/// @}

template <class T>
KudDatasetPointer<T>::KudDatasetPointer(const QString& key, const QString& borrower)
    : m_borrowing(key, borrower,
                  [](KudADataset* dataset) { return dynamic_cast<T*>(dataset) != nullptr; })
{
}

template <class T>
template <class U>
KudDatasetPointer<U> KudDatasetPointer<T>::dynamicCast() const
{
    KudDatasetPointer<U> cast;
    if (dynamic_cast<U*>(get()))
        cast.m_borrowing = m_borrowing;
    return cast;
}
