#pragma once

#include <util/utils/KuuCoordSystemConverter.h>

#include <QtCore/QByteArray>

#include <vector>

/// A block of lines of text with two or three coordinates each, converted together. Between the
/// numbers, and around them, a line stays as it is. Empty lines and those that begin with "#" pass
/// through.
///
/// Columns stand between blanks, tabs, or a comma or semicolon with blanks around it. An empty
/// column between commas or semicolons, and the undefined text, is undefined.
class CoordinateLines
{
public:
    static constexpr int SIZE = 10000;

    explicit CoordinateLines(const QByteArray& undefined)
        : m_undefined(undefined)
    {
    }

    /// `begin` to `end` is a line without its line feed, borrowed until `convert`. The answer is
    /// empty, or what is wrong with the line; it is not added then.
    QString add(const char* begin, const char* end);
    bool isFull() const { return m_lines.size() >= SIZE; }

    /// Appends the converted lines to `out`, with a line feed each, and empties the block.
    KuuCoordSystemConverter::Counts convert(const KuuCoordSystemConverter& converter,
                                            QByteArray& out);

private:
    static constexpr int MAX_COLUMNS = 3;
    struct Cell {
        const char* begin;
        const char* end;
    };
    struct Line {
        const char* begin;
        const char* end;
        Cell cells[MAX_COLUMNS];
        int columns; // 0: it passes through
    };

    QString split(Line& line) const;
    QString readNumber(const Cell& cell, double& value) const;
    void write(const Line& line, const double* values, QByteArray& out) const;
    char* writeNumber(char* out, double value) const;

    const QByteArray m_undefined;
    std::vector<Line> m_lines;
    std::vector<double> m_values; // of the lines with columns: x, y, z
};
