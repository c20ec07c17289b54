#include <basic/base/HbbContainer.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

QString HbbContainer::getUniqueName(const QString& name,
                                    const std::function<bool(const QString&)>& isTaken)
{
    if (!isTaken(name))
        return name;
    static const QRegularExpression numbered(QStringLiteral("^(.*) \\(([1-9][0-9]{0,8})\\)$"),
                                             QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = numbered.match(name);
    const QString stem = match.hasMatch() ? match.captured(1) : name;
    for (qint64 number = match.captured(2).toLongLong() + 1;; ++number) {
        const QString candidate = stem + QLatin1String(" (") + QString::number(number) + u')';
        if (!isTaken(candidate))
            return candidate;
    }
}

QString HbbContainer::getUniqueName(const QString& name, const QStringList& takenNames)
{
    const QSet<QString> taken(takenNames.begin(), takenNames.end());
    return getUniqueName(name, [&taken](const QString& text) { return taken.contains(text); });
}
