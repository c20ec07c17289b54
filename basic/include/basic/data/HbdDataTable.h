#pragma once

#include <basic/data/HbdAVariable.h>

#include <QtCore/QHash>

#include <memory>
#include <vector>

/// Columns of one length, in order, each with a full name of its own. A copy is deep.
class KELVANE_BASIC_EXPORT HbdDataTable
{
public:
    HbdDataTable();
    HbdDataTable(const HbdDataTable& other);
    HbdDataTable(HbdDataTable&& other) noexcept;
    HbdDataTable& operator=(HbdDataTable other) noexcept;
    ~HbdDataTable();

    int getSampleCount() const { return m_sampleCount; }
    int getVariableCount() const { return static_cast<int>(m_variables.size()); }

    HbdAVariable* getVariableAt(int i)
    {
        m_room = 0;
        return m_variables[static_cast<std::size_t>(i)].get();
    }
    const HbdAVariable* getVariableAt(int i) const
    {
        return m_variables[static_cast<std::size_t>(i)].get();
    }

    /// The column of that full name, or null; its position, or -1. O(1).
    HbdAVariable* findVariable(const QString& fullName);
    const HbdAVariable* findVariable(const QString& fullName) const;
    int indexOf(const QString& fullName) const;

    /// Adopts a column. The first column of a table without columns and samples sets the sample
    /// count. Refused (null is returned, and the column stays with the caller) when the name is
    /// empty or taken, or the length differs.
    HbdAVariable* addVariable(std::unique_ptr<HbdAVariable>&& variable);

    /// A new column of undefined values, or null when the name is empty or taken.
    HbdAVariable* createVariable(const HbdVariableDetails& details);

    bool removeVariable(int i);

    /// Renames the column, and nothing else; false when the resulting full name is taken.
    bool renameVariable(int i, const QString& name);

    /// \name Changing the samples: as a whole or, for want of memory, not at all
    /// @{
    void reserveSamples(int count);
    void setSampleCount(int count);
    void insertSamples(int rank, int count);
    void removeSamples(const HbiIntervalIntSmallDisjoint& ranks);

    /// Appends the samples of another table, column by column of the same full name and kind; the
    /// cells of columns that the other does not have are undefined. With `addMissing`, columns that
    /// only the other has are created. A user error when the samples would be more than 2^31 - 1.
    void appendTable(const HbdDataTable& other, bool addMissing);
    /// @}

    /// Drops all columns and samples.
    void clear();

    bool isEqual(const HbdDataTable& other) const;

private:
    void rebuildIndex();
    void appendColumns(const HbdDataTable& other, int total, bool addMissing);

    std::vector<std::unique_ptr<HbdAVariable>> m_variables;
    QHash<QString, int> m_index;
    int m_sampleCount = 0;
    int m_room = 0; // samples that all columns can hold as they are; 0 when somebody may edit one
};
