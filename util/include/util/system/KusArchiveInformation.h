#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QVariantMap>

/// The information that an archive carries about itself, as the data of its first member: one line
/// for each entry, in the order of the keys, "KEY = VALUE". The value is "__bin__" and base64 of a
/// byte array, or the base64 of a text in UTF-8 of any other value; one that is no text is empty.
/// Stateless.
namespace KusArchiveInformation
{
/// The most bytes and lines that it may have: an archive shall not fill the memory with them.
inline constexpr qint64 MAX_SIZE = 4 << 20;
inline constexpr int MAX_LINES = 10000;

/// A key that holds " = " or a line feed, is empty, or begins or ends with a blank is a programming
/// error, and so are more than MAX_SIZE bytes or MAX_LINES entries.
KELVANE_UTIL_EXPORT QByteArray encode(const QVariantMap& information);

/// Byte arrays and texts come back; a line without " = " is passed over.
KELVANE_UTIL_EXPORT QVariantMap decode(const QByteArray& data);
} // namespace KusArchiveInformation
