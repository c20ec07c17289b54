#pragma once

#include "KudTableBlockColumn.h"

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QModelIndex>

class QAbstractItemModel;
class QAbstractProxyModel;
class QItemSelectionModel;
class QMimeData;

/// Writes a block of cells in the three forms of the clipboard. Cells of a model that rests on a
/// table, through whatever proxies, are read from its columns, without a call of the model for
/// each.
class KudTableBlockEncoder
{
    Q_DECLARE_TR_FUNCTIONS(KudTableBlockEncoder)

public:
    using Ranks = HbiIntervalIntSmallDisjoint;

    /// Rows and columns that the model does not have are left out.
    KudTableBlockEncoder(const QAbstractItemModel& model, const Ranks& rows, const Ranks& columns,
                         QChar decimal);
    ~KudTableBlockEncoder();

    /// Only the selected cells. Rows and columns without one are left out, other cells that are
    /// not selected are left empty.
    void restrictTo(const QItemSelectionModel& selection);

    /// HbeUserError when it is too much for a clipboard.
    std::unique_ptr<QMimeData> encode();

private:
    struct Column {
        int section;
        const HbdAVariable* values = nullptr; // where the model rests on a table
        Ranks selectedRows;                   // all rows when there are no gaps
        HbiIntervalIterator<HbiIntervalIntSmall> selected;
        std::unique_ptr<KudTableBlockColumn> cells;
        bool isSelected = true; // in the present row
    };

    void reserveRest();
    void createColumns();
    bool findTableColumns();
    QModelIndex toSource(int row, int section) const;
    void appendHeader();
    void appendRows(const int* rows, int count);
    void appendRow(int row, int i);
    void appendDeclaration(const Column& column);
    void findGaps(int row);
    void checkSize() const;

    const QAbstractItemModel& m_model;
    QChar m_decimal;
    Ranks m_rows;
    std::vector<Column> m_columns;
    std::vector<const QAbstractProxyModel*> m_proxies; // from the model to that of the table
    bool m_isOfTable = false;
    bool m_hasGaps = false;
    bool m_isFirstRow = true;
    bool m_isReserved = false;
    std::string m_text;
    std::string m_html;
    std::string m_own;
};
