#pragma once

#include <gtest/gtest.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QHash>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

/// Every entry below a directory with its kind, permissions, time (in seconds unless told), content
/// or text of the link. Directories have times only on request.
template <class Unit = std::chrono::seconds>
QByteArrayList listTree(const QString& directory, bool directoryTimes = true)
{
    namespace fs = std::filesystem;
    const fs::path root(directory.toStdString());
    QByteArrayList lines;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        const bool isFile = !entry.is_symlink() && entry.is_regular_file();
        QByteArray content;
        if (entry.is_symlink()) {
            content = "-> " + QByteArray::fromStdString(fs::read_symlink(entry.path()).string());
        } else if (isFile) {
            std::ifstream file(entry.path(), std::ios::binary);
            EXPECT_TRUE(file.is_open()) << entry.path();
            const std::string bytes(std::istreambuf_iterator<char>(file), {});
            content = QByteArray::number(qulonglong(bytes.size())) + ' ' +
                      QByteArray::number(qHash(QByteArray::fromStdString(bytes)));
        }
        const fs::file_status status = entry.symlink_status();
        const bool isTimed = isFile || (directoryTimes && entry.is_directory());
        const auto time = isTimed ? entry.last_write_time().time_since_epoch()
                                  : fs::file_time_type::duration::zero();
        lines.append(QByteArray::fromStdString(entry.path().lexically_relative(root).string()) +
                     ' ' + QByteArray::number(int(status.type())) + ' ' +
                     QByteArray::number(int(status.permissions()), 8) + " @" +
                     QByteArray::number(qint64(std::chrono::floor<Unit>(time).count())) + ' ' +
                     content);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}
