#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDatasetVariable.h>
#include <util/dataset/KudTableBlock.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QVector>

#include <memory>
#include <optional>
#include <vector>

class KudADataTable;

/// Writes a block of cells into a table, with one notice for all. What the table or a variable does
/// not take is refused cell by cell, with a reason; the other cells are written.
///
/// A typed cell is taken as it is by a variable of its kind: categories by label, numbers of all
/// kinds converted from unit to unit; when one side has no unit, as they were seen. Everything else
/// is taken as if a person had typed its text into the cell (see KudTableUtils::editRoleToValue).
///
/// Of one use; main thread only.
class KELVANE_UTIL_EXPORT KudTablePaste
{
    Q_DECLARE_TR_FUNCTIONS(KudTablePaste)

public:
    /// Where the block goes, and how.
    struct Target {
        /// The sample that takes the first row; further rows go to the samples behind it.
        int firstRank = 0;

        /// In a sorted or filtered view: the samples that take the rows, in the order of the view.
        /// Then `firstRank` means nothing. A negative rank is none.
        std::optional<std::vector<int>> ranks;

        /// The column that takes the first column of the block; further ones go to its right.
        int firstColumn = 0;

        /// Columns go to the variables of their names instead (a full name, or a plain one that is
        /// enough), the first one that has it. Of text, which names none, the first row does.
        bool byName = false;

        /// Rows that find no sample are appended to the table, where it permits that.
        bool append = false;

        /// The block is repeated over all of `ranks` and, unless it goes by name, `columnCount`
        /// columns, as one cell pasted over a selection fills it; cut off at their ends.
        bool fill = false;
        int columnCount = 1;
    };

    struct Refusal {
        int rank;                    ///< -1 where there is no sample
        KudDatasetVariable variable; ///< empty where there is none
        QString columnName;          ///< in the block; empty where its columns have no names
        QString text;                ///< the cell, as people see it
        QString reason;              ///< a sentence for people
    };

    /// The list of refusals ends here; all are counted. Their texts are cut off.
    static constexpr int MAX_LISTED = 1000;
    static constexpr int MAX_TEXT = 100;

    explicit KudTablePaste(KudADataTable& table);
    ~KudTablePaste();

    /// True when all cells were written.
    bool paste(const KudTableBlock& block, const Target& target);

    qint64 getWrittenCount() const { return m_writtenCount; }
    qint64 getRefusedCount() const { return m_refusedCount; }
    int getAppendedCount() const { return m_appendedCount; } ///< samples
    const QVector<Refusal>& getRefusals() const { return m_refusals; }

    /// For people: how many cells were refused, and the first ones with their reasons. Empty when
    /// none was.
    QString getSummary() const;

private:
    struct Place {
        int rank; ///< -1: there is no sample
        int row;  ///< of the block
    };
    struct Column {
        int source; ///< of the block
        KudDatasetVariable variable;
        QString refusal; ///< why it takes no cell at all
    };
    class Values;

    void findColumns(const KudTableBlock& block, const Target& target);
    void findColumnsByName(const KudTableBlock& block);
    QString findRefusal(const KudDatasetVariable& variable) const;
    void findPlaces(const KudTableBlock& block, const Target& target, bool append);
    void appendSamples();
    void refuseStrays(const KudTableBlock& block);
    void pasteColumn(const KudTableBlock& block, const Column& column);
    std::vector<Place> findAccepted(const KudTableBlock& block, const Column& column,
                                    const Values& values);
    void write(const KudTableBlock& block, const Column& column, const Values& values,
               const std::vector<Place>& accepted);
    void refuse(const KudTableBlock& block, const Column& column, const Place& place,
                const QString& reason);
    static QString toText(const Refusal& refusal);

    KudADataTable& m_table;
    std::vector<Column> m_columns; // at most one for each variable
    std::vector<Column> m_strays;  // that have no variable, in the order of the block
    std::vector<Place> m_places;   // in the order of ranks
    qint64 m_writtenCount = 0;
    qint64 m_refusedCount = 0;
    int m_appendedCount = 0;
    QVector<Refusal> m_refusals;
};
