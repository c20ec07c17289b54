#pragma once

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <filesystem>
#include <system_error>

/// How this module looks at an entry of a directory: everything counts, and a link is a link,
/// whatever it points to. Stateless.
namespace KusFileEntry
{
inline constexpr QDir::Filters EVERY_ENTRY =
    QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;

inline bool isLink(const QFileInfo& info)
{
    return info.isSymLink() || info.isJunction();
}

inline bool existsOrIsLink(const QFileInfo& info)
{
    return isLink(info) || info.exists();
}

inline std::filesystem::path toNative(const QString& path)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(path.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(path).toStdString());
#endif
}

inline QString toText(const std::error_code& code)
{
    return QString::fromLocal8Bit(code.message().c_str());
}
} // namespace KusFileEntry
