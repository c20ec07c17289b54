// The part of KusFileUtils that serves file dialogs: filters, and the paths that users type.
#include <util/system/KusFileUtils.h>

#include <QtCore/QRegularExpression>

namespace
{
QString toPattern(const QString& extension)
{
    if (extension.contains(QLatin1Char('*')) || extension.contains(QLatin1Char('?')))
        return extension;
    return QLatin1String(extension.startsWith(QLatin1Char('.')) ? "*" : "*.") + extension;
}

QString toLine(const QString& name, const QStringList& patterns)
{
    return name + QStringLiteral(" (%1)").arg(patterns.join(QLatin1Char(' ')));
}

/// The first extension that stands in the last parentheses of a filter line; empty when its first
/// pattern does not fix one.
QString getFirstExtension(const QString& filterLine)
{
    static const QRegularExpression firstPattern(
        QStringLiteral("\\(\\s*\\*\\.([^\\s*?()]+)[^()]*\\)\\s*$"));
    return firstPattern.match(filterLine).captured(1);
}
} // namespace

QString KusFileUtils::fixFilePath(const QString& path, const QString& selectedFilter)
{
    const QString fixed = QDir::fromNativeSeparators(path);
    const QFileInfo info(fixed);
    const QString extension = getFirstExtension(selectedFilter);
    if (extension.isEmpty() || info.fileName().isEmpty() || !info.suffix().isEmpty())
        return fixed;
    return fixed + (fixed.endsWith(QLatin1Char('.')) ? QString() : QStringLiteral(".")) + extension;
}

QString KusFileUtils::fixDirectoryPath(const QString& path, bool withFinalSeparator)
{
    if (path.isEmpty())
        return path;
    QString fixed = QDir::cleanPath(QDir::fromNativeSeparators(path));
    if (withFinalSeparator && !fixed.endsWith(QLatin1Char('/')))
        fixed += QLatin1Char('/');
    return fixed;
}

bool KusFileUtils::validateExtension(const QString& name, const QStringList& extensions)
{
    const auto matches = [&](const QString& extension) {
        const QString pattern = toPattern(extension);
        if (pattern == QLatin1String("*") || pattern == QLatin1String("*.*"))
            return true;
        const QStringRef ending = pattern.midRef(1); // ".csv"
        return name.size() > ending.size() && name.endsWith(ending, Qt::CaseInsensitive);
    };
    return extensions.isEmpty() || std::any_of(extensions.begin(), extensions.end(), matches);
}

QString KusFileUtils::formatFilters(const QList<Filter>& filters, bool withAllCompatible,
                                    bool withAllFiles)
{
    QStringList lines;
    QStringList allPatterns;
    for (const Filter& filter : filters) {
        QStringList patterns;
        for (const QString& pattern : filter.patterns)
            patterns.append(toPattern(pattern));
        lines.append(toLine(filter.name, patterns));
        allPatterns += patterns;
    }
    allPatterns.removeDuplicates();
    if (withAllCompatible && !allPatterns.isEmpty())
        lines.prepend(toLine(getAllCompatibleFilesFilterName(), allPatterns));
    if (withAllFiles)
        lines.append(tr("All files") + QStringLiteral(" (*)"));
    return lines.join(QLatin1String(";;"));
}

QString KusFileUtils::getAllCompatibleFilesFilterName()
{
    return tr("All compatible files");
}
