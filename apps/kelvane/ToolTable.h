#pragma once

#include <QtCore/QStringList>
#include <QtCore/QVector>

/// A table of texts for people. Columns that are empty in every row are left out, unless asked
/// for, and so are lines that show nothing.
class ToolTable
{
public:
    explicit ToolTable(const QStringList& headers);

    /// The columns from `first` to `last` hold numbers; may be called again for others.
    void alignRight(int first, int last);
    void keepEmptyColumns() { m_keepsEmpty = true; }

    /// A cell for each header; what a terminal would obey is made visible.
    void addRow(const QStringList& cells);

    /// How many columns, from the first on, a line of that width holds; at least one.
    int countFitting(int lineWidth) const;

    /// Lines with a line feed each, behind `indent` blanks; of the first `columns` columns only,
    /// unless that is negative.
    QString toText(int indent, int columns = -1) const;

private:
    int widthOf(int column) const;

    QVector<QStringList> m_rows; // the first is the header
    QVector<bool> m_isRight;
    bool m_keepsEmpty = false;
};
