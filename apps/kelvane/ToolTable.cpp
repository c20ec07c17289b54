#include "ToolTable.h"

#include <algorithm>

void ToolTable::alignRight(int first, int last)
{
    m_firstRight = first;
    m_lastRight = last;
}

/// 0 for a column that has nothing but its header.
int ToolTable::widthOf(int column) const
{
    int width = 0;
    for (int row = 1; row < m_rows.size(); ++row)
        width = std::max(width, m_rows.at(row).at(column).size());
    return width == 0 ? 0 : std::max(width, m_rows.first().at(column).size());
}

QString ToolTable::toText(int indent) const
{
    QVector<int> widths;
    for (int column = 0; column < m_rows.first().size(); ++column)
        widths.append(widthOf(column));

    QString text;
    for (const QStringList& row : m_rows) {
        QString line(indent, QLatin1Char(' '));
        for (int column = 0; column < row.size(); ++column) {
            if (widths.at(column) == 0)
                continue;
            const bool right = column >= m_firstRight && column <= m_lastRight;
            line += right ? row.at(column).rightJustified(widths.at(column))
                          : row.at(column).leftJustified(widths.at(column));
            line += QStringLiteral("  ");
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}
