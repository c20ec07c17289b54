#pragma once

#include <basic/data/HbdVariableDetails.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QVariant>

#include <memory>

/// One column of values, with its description. The kinds (HbdVariableReal, HbdVariableText …) hold
/// their values in contiguous memory and give a typed view of it; the virtual operations here take
/// a call per column, or per edited cell, never per value of a loop.
///
/// Ranks run from 0 below getCount(); a rank outside is the caller's fault. No thread may write
/// while another reads.
class KELVANE_BASIC_EXPORT HbdAVariable
{
public:
    virtual ~HbdAVariable();
    HbdAVariable& operator=(const HbdAVariable&) = delete;

    const HbdEVarType& getType() const { return m_details.type; }
    const HbdVariableDetails& getDetails() const { return m_details; }

    /// Replaces the description; the type stays that of the column.
    void setDetails(const HbdVariableDetails& details);
    void setName(const QString& name) { m_details.name = name; }

    /// The realization and the component that the column holds; both are empty for a plain one.
    const QString& getIndex() const { return m_index; }
    const QString& getComponent() const { return m_component; }
    void setRealization(const QString& index) { m_index = index; }
    void setComponent(const QString& component) { m_component = component; }

    /// Name, realization and component by the naming rules of HbdName; unique in a table.
    QString getFullName() const;

    virtual int getCount() const = 0;

    /// Room for `count` values in all. Asking for ever more room is amortised O(1) per value, and
    /// growing into it does not fail.
    virtual void reserve(int count) = 0;

    /// Truncates, or appends undefined values. Appending is amortised O(1) per value.
    virtual void resize(int count) = 0;

    /// Inserts undefined values before `rank`.
    virtual void insertUndefined(int rank, int count) = 0;

    /// Deletes the values of these ranks in one pass; ranks beyond the end are ignored.
    virtual void removeRanks(const HbiIntervalIntSmallDisjoint& ranks) = 0;

    /// Appends the values of a column of the same kind; undefined values for another kind.
    virtual void append(const HbdAVariable& other) = 0;

    virtual bool isUndefined(int rank) const = 0;
    virtual int getUndefinedCount() const = 0;

    /// One cell for the edges: views, mementos of small things, rows of texts. An undefined cell is
    /// an invalid variant.
    virtual QVariant getVariant(int rank) const = 0;

    /// Stores a cell. An invalid variant, and one that the kind cannot hold, stores the kind's
    /// undefined value; each kind says what it can hold.
    virtual void setVariant(int rank, const QVariant& value) = 0;

    /// Stores a block of cells from `firstRank` on, with one virtual call; a null pointer is an
    /// invalid variant.
    virtual void setVariants(int firstRank, const QVariant* const* values, int count) = 0;

    /// Copies `count` values of another column over those from `firstRank` on. False, and nothing
    /// changes, when the kinds differ. Categories are matched by label.
    virtual bool copyValues(int firstRank, const HbdAVariable& source, int sourceRank,
                            int count) = 0;

    /// A deep copy, or a column of the same kind and description without values.
    virtual std::unique_ptr<HbdAVariable> clone() const = 0;
    virtual std::unique_ptr<HbdAVariable> createEmpty() const = 0;

    /// Same kind, description and values; reals are equal bit for bit.
    bool isEqual(const HbdAVariable& other) const;

    /// True when every value is defined: what coordinates need.
    bool isValid() const { return getUndefinedCount() == 0; }

    /// A column of the type that the details name, without values.
    static std::unique_ptr<HbdAVariable> create(const HbdVariableDetails& details);

protected:
    explicit HbdAVariable(const HbdVariableDetails& details, const HbdEVarType& type);
    HbdAVariable(const HbdAVariable&) = default;

    virtual bool _hasEqualValues(const HbdAVariable& other) const = 0;

private:
    HbdVariableDetails m_details;
    QString m_index;
    QString m_component;
};
