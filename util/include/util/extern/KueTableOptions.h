#pragma once

#include <util/KuExport.h>

#include <QtCore/QStringList>

/// How KueTableReader reads a table of text. A plain value; the defaults read what most programs
/// write.
struct KELVANE_UTIL_EXPORT KueTableOptions {
    /// AUTO is decided by the first lines. SPACE means runs of spaces and tabs.
    enum class Separator { AUTO, COMMA, SEMICOLON, TAB, SPACE };
    /// AUTO is decided by the numbers of the first block.
    enum class Decimal { AUTO, DOT, COMMA };

    Separator separator = Separator::AUTO; ///< between the cells of a row
    Decimal decimal = Decimal::AUTO;       ///< between the integer part and the decimals

    /// Cells that hold one of these are undefined, quoted or not. Compared without the white space
    /// around; with the case in texts ("Na" is sodium), without it among numbers ("nan", "n/a").
    QStringList missingTexts = {QString(), QStringLiteral("NA"), QStringLiteral("NaN"),
                                QStringLiteral("N/A"), QStringLiteral("-")};

    QStringList textColumns;     ///< columns that stay texts, whatever they hold
    QStringList categoryColumns; ///< columns that become categories, whatever they hold

    QString xColumn; ///< the column that is the X coordinate; empty: none is named
    QString yColumn; ///< the column that is the Y coordinate
    QString zColumn; ///< the column that is the Z coordinate

    /// Coordinates are recognised by common names when none of the three is named.
    bool guessCoordinates = true;

    int blockSize = 1024 * 1024;             ///< bytes that are read at once
    qint64 maxLineLength = 16 * 1024 * 1024; ///< bytes of a row, its quoted line ends included
    int maxColumns = 10000;                  ///< columns of a table

    /// Texts become categories when there are at most so many different ones ...
    int maxCategories = 256;
    /// ... and at most so many per defined cell: 0.5 asks that each text occurs twice on average.
    double maxCategoryShare = 0.5;

    /// Raises HbeUserError when a limit is out of its range or a column is asked to be two things.
    void validate() const;
};
