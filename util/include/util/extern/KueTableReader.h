#pragma once

#include <util/extern/KueTableOptions.h>
#include <util/extern/KueTableResult.h>

#include <functional>

/// Reads a table of text into typed columns: delimited text with a header line, or GeoEAS (a title,
/// the number of variables, a line for each name, rows of numbers; above 1e30 is undefined), which
/// is recognised by its form.
///
///     KueTableReader reader(options);
///     KueTableResult result = reader.read(path);
///
/// A column is integer (64 bits), real, category or text, whatever holds all its cells:
/// - A number is digits with at most one decimal sign, a sign before and an exponent behind. Extra
///   zeros in front ("001"), hexadecimals, "inf" and digits in groups make a text.
/// - No digit that came in is lost: a real column takes a format that writes them again, and a
///   column with numbers that a real cannot hold stays text. Coordinates alone are rounded.
/// - Where a file quotes some cells and not others, what it quotes without need is a text.
/// - A column without any value is a text column.
///
/// The file is UTF-8 (with or without byte-order mark), UTF-16 with its mark, or Latin-1 where its
/// bytes are not UTF-8. Lines end with LF, CR LF or CR. Quotes that begin a cell enclose
/// separators, line ends and doubled quotes. Empty lines are passed over; in a table of one column
/// they are undefined cells, but at the end.
///
/// The file is read in blocks, once; a second time only for columns whose type a late cell has
/// changed. Beside the columns it takes a few blocks of memory. The locale never matters. Several
/// threads may read with one reader as long as the progress function allows it.
class KELVANE_UTIL_EXPORT KueTableReader
{
public:
    /// Told how much of the work is done, in bytes, every few megabytes; false cancels.
    using Progress = std::function<bool(qint64 bytesDone, qint64 bytesTotal)>;

    explicit KueTableReader(const KueTableOptions& options = KueTableOptions());

    void setProgress(Progress progress) { m_progress = std::move(progress); }

    /// Raises HbeUserError, with file, line, column and text, when the file cannot be understood or
    /// an option does not fit it (an unknown column, a coordinate that is not a number, a row of
    /// another length), and HbcCancelled when the progress function cancels. `path` is a regular
    /// file.
    KueTableResult read(const QString& path) const;

private:
    KueTableOptions m_options;
    Progress m_progress;
};
