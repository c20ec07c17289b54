#pragma once

#include <QtCore/QStringList>
#include <QtCore/QVector>

/// A table of texts for people. Columns that are empty in every row are left out.
class ToolTable
{
public:
    explicit ToolTable(const QStringList& headers)
        : m_rows({headers})
    {
    }

    /// The columns from `first` to `last` hold numbers.
    void alignRight(int first, int last);
    void addRow(const QStringList& cells) { m_rows.append(cells); }

    /// Lines with a line feed each, behind `indent` blanks.
    QString toText(int indent) const;

private:
    int widthOf(int column) const;

    QVector<QStringList> m_rows; // the first is the header
    int m_firstRight = 0;
    int m_lastRight = -1;
};
