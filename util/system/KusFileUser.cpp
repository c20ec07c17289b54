#include <util/system/KusFileUser.h>

#include <basic/error/HbeDiskError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QStandardPaths>

#include <mutex>

namespace
{
struct Setting {
    std::mutex mutex;
    QString directory;
};

Setting& setting()
{
    static Setting instance;
    return instance;
}
} // namespace

QString KusFileUser::setDirectory(const QString& path)
{
    const std::lock_guard<std::mutex> lock(setting().mutex);
    QString previous = path.isEmpty() ? path : QDir::cleanPath(path);
    previous.swap(setting().directory);
    return previous;
}

QString KusFileUser::getDirectory()
{
    {
        const std::lock_guard<std::mutex> lock(setting().mutex);
        if (!setting().directory.isEmpty())
            return setting().directory;
    }
    const QString named = qEnvironmentVariable("KELVANE_USER_DIR");
    if (!named.isEmpty())
        return QDir::cleanPath(named);
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/kelvane");
}

QString KusFileUser::getPath(const QString& fileName)
{
    return getDirectory() + QLatin1Char('/') + fileName;
}

QString KusFileUser::createPath(const QString& fileName)
{
    const QString directory = getDirectory();
    if (!QDir().mkpath(directory)) {
        throw HbeDiskError(
            QCoreApplication::translate("KusFileUser",
                                        "Cannot create the directory of the user's files '%1'.")
                .arg(directory));
    }
    return directory + QLatin1Char('/') + fileName;
}
