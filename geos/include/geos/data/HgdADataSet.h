#pragma once

#include <geos/calc/HgcExport.h>

#include <basic/data/HbdAVariable.h>

#include <memory>
#include <vector>

/// The calculators' view of data: columns by role, a geometry, and the samples that count. It
/// copies no values. Columns are borrowed: whoever made the view keeps them alive, and edits
/// neither values nor descriptions, while a calculator works with it or with a copy of it.
///
/// A copyable value (copies borrow the same columns); any thread may read it.
class KELVANE_GEOS_EXPORT HgdADataSet
{
public:
    /// The role of variables that hold data: "V".
    static const QString& getDataRole();

    virtual ~HgdADataSet();

    /// The samples of every column: points, or the nodes of a grid.
    int getSampleCount() const { return m_sampleCount; }

    /// Columns keep the order they were added in. One of another length is a programming error.
    void addVariable(const HbdAVariable& values, const QString& role = getDataRole());
    std::vector<const HbdAVariable*> getVariables(const QString& role) const;

    /// The bytes that one sample takes in all columns together; of a text, those of its handle.
    qint64 getSampleSize() const;

    /// The samples that count; all of them unless set. Ranks beyond the samples are left out.
    void setSelection(const HbiIntervalIntSmallDisjoint& ranks);
    void removeSelection();
    bool hasSelection() const { return m_hasSelection; }
    const HbiIntervalIntSmallDisjoint& getSelection() const { return m_selection; }

    virtual std::unique_ptr<HgdADataSet> clone() const = 0;

protected:
    /// A negative count is a programming error.
    explicit HgdADataSet(int sampleCount);
    HgdADataSet(const HgdADataSet&) = default;
    HgdADataSet& operator=(const HgdADataSet&) = default;

    /// Refuses, as a programming error, a column of another length.
    void checkLength(const HbdAVariable& values) const;

private:
    struct Variable {
        const HbdAVariable* values; // borrowed
        QString role;
    };

    std::vector<Variable> m_variables;
    int m_sampleCount;
    HbiIntervalIntSmallDisjoint m_selection;
    bool m_hasSelection = false;
};
