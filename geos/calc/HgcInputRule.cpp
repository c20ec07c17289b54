#include <geos/calc/HgcInputRule.h>

#include <QtCore/QCoreApplication>

QString HgcInputRule::check(int count) const
{
    if (count < minimum) {
        return QCoreApplication::translate(
                   "HgcInputRule",
                   "Too few variables of role '%1': %2 given, at least %3 expected.")
            .arg(role)
            .arg(count)
            .arg(minimum);
    }
    if (maximum != NO_LIMIT && count > maximum) {
        return QCoreApplication::translate(
                   "HgcInputRule",
                   "Too many variables of role '%1': %2 given, at most %3 expected.")
            .arg(role)
            .arg(count)
            .arg(maximum);
    }
    return QString();
}
