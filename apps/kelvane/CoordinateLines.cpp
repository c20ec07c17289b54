#include "CoordinateLines.h"

#include "ToolCommand.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace
{
constexpr int SHOWN = 40; // characters of a cell in a message

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

bool isMark(char c)
{
    return c == ',' || c == ';';
}

QString shown(const char* begin, const char* end)
{
    const auto size = static_cast<int>(std::min<std::ptrdiff_t>(end - begin, SHOWN));
    const QString text = QString::fromUtf8(begin, size);
    return end - begin > SHOWN ? text + QStringLiteral("\u2026") : text;
}

const char* skipBlanks(const char* at, const char* end)
{
    return std::find_if_not(at, end, isBlank);
}

/// What editors put before UTF-8.
const char* skipByteOrderMark(const char* begin, const char* end)
{
    return end - begin >= 3 && std::memcmp(begin, "\xEF\xBB\xBF", 3) == 0 ? begin + 3 : begin;
}
} // namespace

QString CoordinateLines::split(Line& line) const
{
    const char* at = skipBlanks(skipByteOrderMark(line.begin, line.end), line.end);
    if (at == line.end || *at == '#')
        return {};
    bool isOpen = true; // a mark, or the line's begin, asks for a cell
    while (isOpen || at != line.end) {
        const char* const begin = at;
        at = std::find_if(at, line.end, [](char c) { return isBlank(c) || isMark(c); });
        if (line.columns == MAX_COLUMNS)
            return Tool::tr("there are more than three columns");
        line.cells[line.columns++] = {begin, at};
        at = skipBlanks(at, line.end);
        isOpen = at != line.end && isMark(*at);
        if (isOpen)
            at = skipBlanks(at + 1, line.end);
    }
    return line.columns < 2 ? Tool::tr("there is one column, not two or three") : QString();
}

QString CoordinateLines::readNumber(const Cell& cell, double& value) const
{
    value = HbbGlobal::D_FFFF;
    const auto size = static_cast<std::size_t>(cell.end - cell.begin);
    if (size == 0 || (size == static_cast<std::size_t>(m_undefined.size()) &&
                      std::memcmp(cell.begin, m_undefined.constData(), size) == 0))
        return {};
    // A plus sign, which the function does not know; not before another sign.
    const bool hasPlus = *cell.begin == '+' && size > 1 && cell.begin[1] != '-';
    const auto read = std::from_chars(cell.begin + (hasPlus ? 1 : 0), cell.end, value);
    if (read.ec != std::errc() || read.ptr != cell.end || !std::isfinite(value))
        return Tool::tr("'%1' is no coordinate").arg(shown(cell.begin, cell.end));
    return {};
}

QString CoordinateLines::add(const char* begin, const char* end)
{
    Line line;
    line.begin = begin;
    line.end = end;
    line.columns = 0;
    const QString fault = split(line);
    if (!fault.isEmpty())
        return fault;
    double values[MAX_COLUMNS] = {HbbGlobal::D_FFFF, HbbGlobal::D_FFFF, HbbGlobal::D_FFFF};
    for (int i = 0; i < line.columns; ++i) {
        const QString wrong = readNumber(line.cells[i], values[i]);
        if (!wrong.isEmpty())
            return wrong;
    }
    m_lines.push_back(line);
    if (line.columns > 0)
        m_values.insert(m_values.end(), values, values + MAX_COLUMNS);
    return {};
}

KuuCoordSystemConverter::Counts CoordinateLines::convert(const KuuCoordSystemConverter& converter,
                                                         QByteArray& out)
{
    KuuCoordSystemConverter::Counts counts;
    double* values = m_values.data();
    if (!m_values.empty()) {
        const auto count = static_cast<qint64>(m_values.size() / MAX_COLUMNS);
        counts = converter.convert(values, values + 1, values + 2, count, MAX_COLUMNS);
    }
    for (const Line& line : m_lines) {
        write(line, values, out);
        values += line.columns > 0 ? MAX_COLUMNS : 0;
    }
    m_lines.clear();
    m_values.clear();
    return counts;
}

char* CoordinateLines::writeNumber(char* out, double value) const
{
    if (HbbGlobal::isUndefined(value))
        return std::copy(m_undefined.begin(), m_undefined.end(), out);
    const double size = std::fabs(value);
    if (size >= 1e15 || (size < 1e-6 && size > 0.))
        return HbbStringFormat::write(out, value, HbbEFormat::E_SHORTEST, 0);
    // 700000, where the shortest text is 7e+05.
    return std::to_chars(out, out + HbbStringFormat::CAPACITY, value, std::chars_format::fixed).ptr;
}

void CoordinateLines::write(const Line& line, const double* values, QByteArray& out) const
{
    const int number = HbbStringFormat::CAPACITY + m_undefined.size();
    const int size = out.size();
    out.resize(size + static_cast<int>(line.end - line.begin) + MAX_COLUMNS * number + 1);
    char* const begin = out.data();
    char* at = begin + size;
    const char* from = line.begin;
    for (int i = 0; i < line.columns; ++i) {
        at = std::copy(from, line.cells[i].begin, at);
        at = writeNumber(at, values[i]);
        from = line.cells[i].end;
    }
    at = std::copy(from, line.end, at);
    *at++ = '\n';
    out.resize(static_cast<int>(at - begin));
}
