#pragma once

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <gtest/gtest.h>

/// Writes a file, in a directory that is made where there is none, and answers its path.
inline QString writeBytes(const QString& path, const QByteArray& bytes = QByteArray())
{
    EXPECT_TRUE(QFileInfo(path).absoluteDir().mkpath(QStringLiteral(".")));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return path;
}

/// What a file holds; "no file" where it cannot be read.
inline QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}
