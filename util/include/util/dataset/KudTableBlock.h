#pragma once

#include <util/KuExport.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <memory>
#include <optional>

class HbdAVariable;
class QMimeData;

/// A block of cells that came from a clipboard: typed columns with names and units from our own
/// form, or rows of texts, of different lengths perhaps, from that of a spreadsheet. What is read
/// here comes from outside, so anything may be in it. A value; copies share the cells.
class KELVANE_UTIL_EXPORT KudTableBlock
{
    Q_DECLARE_TR_FUNCTIONS(KudTableBlock)

public:
    /// No cells.
    KudTableBlock();

    /// Our own form where it is there and can be read (a unit may be unknown here), else the plain
    /// text. HbeUserError for more cells than can be held.
    static KudTableBlock fromMimeData(const QMimeData& data);

    /// Bytes of KudTableUtils::KELVANE_MIME_DATA; nothing when they are not whole and right.
    static std::optional<KudTableBlock> fromOwnForm(const QByteArray& bytes);

    /// Text as spreadsheets write it: a tab between cells; LF, CR LF or CR after each row, the last
    /// one or not; a cell that begins with a double quote ends with the next one that is not
    /// doubled, whatever is between. A quote without an end is an ordinary character.
    static KudTableBlock fromText(const QString& text);

    int getRowCount() const;
    int getColumnCount() const;    ///< of the longest row
    int getRowSize(int row) const; ///< where the row ends; a text may have one very long row
    bool isEmpty() const { return getRowCount() == 0; }

    /// Whether columns have types, and with them names.
    bool isTyped() const;

    /// Text with its first row as the names of its columns, and no more as cells. A typed block
    /// is returned as it is.
    KudTableBlock withNames() const;
    bool hasNames() const { return isTyped() || m_firstRow > 0; }

    /// The full name of the variable that the column was copied from; empty when it has none.
    QString getName(int column) const;

    /// A typed column, borrowed from the block, with a value for each row; its details tell the
    /// units. Null for text.
    const HbdAVariable* getValues(int column) const;

    /// False for what was not selected among selected cells, and beyond the end of a row.
    bool hasCell(int row, int column) const;

    /// The value in its column's unit, invalid when it is undefined; a text. Invalid for no cell.
    QVariant getCell(int row, int column) const;

    /// As people saw the cell: a number in the unit shown, with all its digits; empty when it is
    /// undefined.
    QString getText(int row, int column) const;

    /// See KudTableUtils::decodeClipBoard.
    QList<QVector<QVariant>> toRows(int cellCount, const HbiIntervalIntSmallDisjoint& rows,
                                    const HbiIntervalIntSmallDisjoint& columns,
                                    const QMap<QString, int>& positions) const;

private:
    struct Data;
    class OwnReader;
    class TextReader;

    std::shared_ptr<const Data> m_data;
    int m_firstRow = 0; // 1 when the first row is the names
};
