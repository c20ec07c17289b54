#pragma once

#include <util/extern/KueTableOptions.h>

#include <basic/data/HbdDataTable.h>

/// What KueTableReader made of a file: the columns, how the file was understood, and what the user
/// should be told about it. Moves, and owns its columns.
struct KueTableResult {
    enum class Form { DELIMITED, GEO_EAS };
    enum class Encoding { UTF_8, LATIN_1, UTF_16 };

    /// One column for each of the file, in its order. Their roles say which are coordinates; real
    /// columns carry the format and the precision of their texts.
    HbdDataTable table;

    Form form = Form::DELIMITED;
    KueTableOptions::Separator separator = KueTableOptions::Separator::COMMA; ///< never AUTO
    KueTableOptions::Decimal decimal = KueTableOptions::Decimal::DOT;         ///< never AUTO
    Encoding encoding = Encoding::UTF_8;
    bool hasHeader = true; ///< false: the first line held numbers, and the names are made up
    QString title;         ///< the first line of a GeoEAS file; empty otherwise

    /// The names of the coordinate columns; empty where there is none.
    QString xColumn;
    QString yColumn;
    QString zColumn;
    bool coordinatesGuessed = false; ///< recognised by their names, not named by the options

    int passes = 1; ///< how often the file was read: 1, or 2 where late cells changed a type

    QStringList notes;    ///< what was decided on the user's behalf
    QStringList warnings; ///< what the user may want to correct
};
