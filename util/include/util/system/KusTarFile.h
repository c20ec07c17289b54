#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>

struct stat;

/// What the header of a member says of a file or directory.
struct KELVANE_UTIL_EXPORT KusTarFile {
    QByteArray name; ///< of its last element, without a slash
    bool isDirectory = false;
    int permissionBits = 0644; ///< octal, nine bits
    qint64 ownerId = -1;       ///< -1: not known
    qint64 groupId = -1;
    QByteArray ownerName; ///< empty: not known
    QByteArray groupName;
    qint64 size = 0;         ///< bytes; of a directory always 0
    qint64 modifSeconds = 0; ///< since 1970

    /// From what the system knows of an entry; names of owners are looked up once for each id.
    static KusTarFile fromSystem(const QByteArray& name, const struct stat& facts);
};
