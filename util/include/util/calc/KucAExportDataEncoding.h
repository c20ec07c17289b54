#pragma once

#include <util/KuExport.h>
#include <util/extern/KueFormatedVariant.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtGui/QColor>

class KucExportBlock;

/// How an export writes its rows into a file; an export owns its encoding and uses it in its own
/// thread. An encoding implements the file and the line; one that has a faster way for many rows
/// overrides the block, too.
///
/// Styles are for encodings that have any; others ignore them.
class KELVANE_UTIL_EXPORT KucAExportDataEncoding
{
public:
    /// How cells look; the encoding that shows styles says what the numbers and the text mean.
    struct CellFormat {
        qint32 style = 0;
        QColor color = Qt::white;
        QString text;
        qint32 alignment = 0;
    };

    KucAExportDataEncoding(const KucAExportDataEncoding&) = delete;
    KucAExportDataEncoding& operator=(const KucAExportDataEncoding&) = delete;

    virtual ~KucAExportDataEncoding();

    /// Begins an empty file in the place of what was there. A file that cannot be opened is an
    /// HbeUserError.
    virtual void openFile() = 0;
    virtual void closeFile() = 0;
    /// Appends a row.
    virtual void writeLine(const QList<KueFormatedVariant>& row) = 0;

    /// Appends the rows of the block: by default one line after another, in the order given.
    virtual void writeBlock(const KucExportBlock& block);

    /// The export ends early: lets go of the file with the rows that it was given so far. Raises
    /// nothing; does nothing by default.
    virtual void abandonFile();

    QString getPath() const { return m_path; }

    void setStyleRow(const CellFormat& style) { m_styleRow = style; }
    /// A style for each column; it counts for rows of as many cells.
    void setStyleCells(const QList<CellFormat>& styles) { m_styleCells = styles; }

protected:
    explicit KucAExportDataEncoding(const QString& path);

    /// The style of a cell: that of the row where columns have none of their own, that of the
    /// column in a row of as many cells as there are styles, else the default.
    CellFormat getStyle(int column, int rowLength) const;

private:
    QString m_path;
    CellFormat m_styleRow;
    QList<CellFormat> m_styleCells;
};
