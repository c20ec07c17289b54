#include <util/extern/KueTableOptions.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>

#include <algorithm>

namespace
{
constexpr int MAX_CATEGORIES = 65535; // codes of 16 bits, one of them undefined

QString translate(const char* text)
{
    return QCoreApplication::translate("KueTableOptions", text);
}

void checkRange(qint64 value, qint64 minimum, qint64 maximum, const QString& what)
{
    if (value < minimum || value > maximum)
        throw HbeUserError(translate("%1 must be between %2 and %3, not %4.")
                               .arg(what)
                               .arg(minimum)
                               .arg(maximum)
                               .arg(value));
}
} // namespace

void KueTableOptions::validate() const
{
    checkRange(blockSize, 1, 1024 * 1024 * 1024, translate("The size of a block"));
    checkRange(maxLineLength, 1, 1024 * 1024 * 1024, translate("The greatest length of a line"));
    checkRange(maxColumns, 1, 1000000, translate("The greatest number of columns"));
    checkRange(maxCategories, 0, MAX_CATEGORIES, translate("The greatest number of categories"));
    if (!(maxCategoryShare >= 0 && maxCategoryShare <= 1))
        throw HbeUserError(translate("The share of categories must be between 0 and 1, not %1.")
                               .arg(maxCategoryShare));

    QStringList named;
    for (const QString& column : {xColumn, yColumn, zColumn}) {
        if (!column.isEmpty())
            named.append(column);
    }
    for (QStringList columns : {textColumns, categoryColumns}) {
        columns.removeDuplicates();
        named.append(columns);
    }
    named.sort();
    const auto twice = std::adjacent_find(named.cbegin(), named.cend());
    if (twice != named.cend())
        throw HbeUserError(
            translate("The column '%1' is asked to be two things at once.").arg(*twice));
}
