#pragma once

#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdSpan.h>

#include <algorithm>
#include <utility>
#include <vector>

/// A column of values of one C++ type. `Traits` says the type of its values, which value is
/// undefined, and how a variant becomes a value; `Self` is the kind that derives from it.
template <class Self, class Base, class Traits>
class HbdTypedVariable : public Base
{
public:
    using Value = typename Traits::Value;

    /// The values, without a copy and without a virtual call each.
    HbdSpan<const Value> getValues() const { return {m_values.data(), getCount()}; }
    HbdSpan<Value> editValues() { return {m_values.data(), getCount()}; }

    const Value& at(int rank) const { return m_values[static_cast<std::size_t>(rank)]; }
    void set(int rank, const Value& value) { m_values[static_cast<std::size_t>(rank)] = value; }
    void append(const Value& value) { m_values.push_back(value); }

    /// Takes all values at once.
    void setValues(std::vector<Value> values) { m_values = std::move(values); }

    static Value getUndefined() { return Traits::undefined(); }
    static bool isUndefinedValue(const Value& value) { return Traits::isUndefined(value); }

    int getCount() const override { return static_cast<int>(m_values.size()); }
    void reserve(int count) override
    {
        const auto wanted = static_cast<std::size_t>(count);
        if (wanted > m_values.capacity())
            m_values.reserve(std::max(wanted, m_values.size() + m_values.size() / 2));
    }
    void resize(int count) override
    {
        m_values.resize(static_cast<std::size_t>(count), Traits::undefined());
    }
    void insertUndefined(int rank, int count) override
    {
        m_values.insert(m_values.begin() + rank, static_cast<std::size_t>(count),
                        Traits::undefined());
    }
    void removeRanks(const HbiIntervalIntSmallDisjoint& ranks) override;
    void append(const HbdAVariable& other) override;

    bool isUndefined(int rank) const override { return Traits::isUndefined(at(rank)); }
    int getUndefinedCount() const override
    {
        return static_cast<int>(
            std::count_if(m_values.begin(), m_values.end(), &Traits::isUndefined));
    }
    QVariant getVariant(int rank) const override { return Traits::toVariant(at(rank)); }
    void setVariant(int rank, const QVariant& value) override
    {
        set(rank, Traits::fromVariant(value));
    }
    void setVariants(int firstRank, const QVariant* const* values, int count) override
    {
        Value* target = m_values.data() + firstRank;
        for (int i = 0; i < count; ++i)
            target[i] = values[i] ? Traits::fromVariant(*values[i]) : Traits::undefined();
    }
    bool copyValues(int firstRank, const HbdAVariable& source, int sourceRank, int count) override
    {
        if (source.getType() != this->getType())
            return false;
        const auto values = static_cast<const Self&>(source).getValues().sub(sourceRank, count);
        std::copy(values.begin(), values.end(), m_values.begin() + firstRank);
        return true;
    }
    std::unique_ptr<HbdAVariable> clone() const override
    {
        return std::make_unique<Self>(static_cast<const Self&>(*this));
    }
    std::unique_ptr<HbdAVariable> createEmpty() const override;

protected:
    using Base::Base;

    bool _hasEqualValues(const HbdAVariable& other) const override
    {
        return Traits::areEqual(m_values, static_cast<const Self&>(other).m_values);
    }

private:
    std::vector<Value> m_values;
};

template <class Self, class Base, class Traits>
void HbdTypedVariable<Self, Base, Traits>::removeRanks(const HbiIntervalIntSmallDisjoint& ranks)
{
    // The values between two deleted intervals move down once.
    const int count = getCount();
    int kept = 0;
    int next = 0;
    const auto moveDown = [&](int end) {
        if (end <= next)
            return;
        if (kept != next)
            std::move(m_values.begin() + next, m_values.begin() + end, m_values.begin() + kept);
        kept += end - next;
    };
    for (const HbiIntervalIntSmall& interval : ranks.intervals()) {
        if (interval.getMin() >= count)
            break;
        moveDown(std::max(interval.getMin(), 0));
        next = std::min(interval.getMax(), count - 1) + 1;
    }
    moveDown(count);
    m_values.resize(static_cast<std::size_t>(kept));
}

template <class Self, class Base, class Traits>
void HbdTypedVariable<Self, Base, Traits>::append(const HbdAVariable& other)
{
    if (other.getType() != this->getType()) {
        resize(getCount() + other.getCount());
        return;
    }
    // By index: a column may be appended to itself.
    const auto& source = static_cast<const Self&>(other).m_values;
    const std::size_t count = source.size();
    m_values.reserve(m_values.size() + count);
    for (std::size_t i = 0; i < count; ++i)
        m_values.push_back(source[i]);
}

template <class Self, class Base, class Traits>
std::unique_ptr<HbdAVariable> HbdTypedVariable<Self, Base, Traits>::createEmpty() const
{
    auto empty = std::make_unique<Self>(static_cast<const HbdAVariable&>(*this).getDetails());
    empty->setRealization(this->getIndex());
    empty->setComponent(this->getComponent());
    return empty;
}
