#include "ToolTable.h"

#include "ToolText.h"

#include <algorithm>

namespace
{
constexpr int GAP = 2; // blanks between two columns
} // namespace

ToolTable::ToolTable(const QStringList& headers)
    : m_isRight(headers.size(), false)
{
    addRow(headers);
}

void ToolTable::alignRight(int first, int last)
{
    std::fill(m_isRight.begin() + first, m_isRight.begin() + last + 1, true);
}

void ToolTable::addRow(const QStringList& cells)
{
    QStringList row;
    for (const QString& cell : cells)
        row.append(ToolText::makeVisible(cell));
    m_rows.append(row);
}

/// 0 for a column that is left out: it has nothing but its header.
int ToolTable::widthOf(int column) const
{
    int width = 0;
    for (int row = 1; row < m_rows.size(); ++row)
        width = std::max(width, ToolText::getWidth(m_rows.at(row).at(column)));
    return width == 0 && !m_keepsEmpty
               ? 0
               : std::max(width, ToolText::getWidth(m_rows.first().at(column)));
}

int ToolTable::countFitting(int lineWidth) const
{
    int left = lineWidth - widthOf(0);
    int count = 1;
    while (count < m_rows.first().size()) {
        left -= GAP + widthOf(count);
        if (left < 0)
            break;
        ++count;
    }
    return count;
}

QString ToolTable::toText(int indent, int columns) const
{
    QVector<int> widths;
    const int count = columns < 0 ? m_rows.first().size() : columns;
    for (int column = 0; column < count; ++column)
        widths.append(widthOf(column));

    QString text;
    for (const QStringList& row : m_rows) {
        QString line(indent, QLatin1Char(' '));
        for (int column = 0; column < count; ++column) {
            if (widths.at(column) == 0)
                continue;
            line += ToolText::padded(row.at(column), widths.at(column), m_isRight.at(column)) +
                    QString(GAP, QLatin1Char(' '));
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        if (!line.isEmpty())
            text += line + QLatin1Char('\n');
    }
    return text;
}
