#pragma once

#include <memory>

/// A value derived from an object's contents, built on first use and dropped on edit. Copies of the
/// object share what is built. `get` may run in several threads at once: at worst two of them
/// build, and one result is kept. The value itself is never changed.
template <class T>
class HbgSharedCache
{
public:
    HbgSharedCache() = default;
    HbgSharedCache(const HbgSharedCache& other)
        : m_value(std::atomic_load(&other.m_value))
    {
    }
    HbgSharedCache& operator=(const HbgSharedCache& other)
    {
        std::atomic_store(&m_value, std::atomic_load(&other.m_value));
        return *this;
    }
    // What is moved away leaves nothing behind that its owner's new contents would contradict.
    HbgSharedCache(HbgSharedCache&& other) noexcept = default;
    HbgSharedCache& operator=(HbgSharedCache&& other) noexcept = default;
    ~HbgSharedCache() = default;

    template <class Builder>
    std::shared_ptr<const T> get(const Builder& build) const
    {
        std::shared_ptr<const T> value = std::atomic_load(&m_value);
        if (!value) {
            value = build();
            std::atomic_store(&m_value, value);
        }
        return value;
    }
    bool isBuilt() const { return std::atomic_load(&m_value) != nullptr; }
    void drop() { m_value.reset(); }

private:
    mutable std::shared_ptr<const T> m_value;
};
