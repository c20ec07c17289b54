#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

/// The name of an archive's member as a place below a directory. Stateless.
namespace KusMemberPath
{
/// The elements of the name, without empty ones and ".": "./a//b/" is a, b. Empty for the directory
/// itself.
KELVANE_UTIL_EXPORT QList<QByteArray> split(const QByteArray& name);

/// Why no file of this name may be written, a sentence to be shown; empty when it may. Refused are
/// absolute names, those that begin with a drive ("C:") or a share, ".." in any place (also between
/// backslashes), NUL, elements of more than 255 bytes, and more than 4,000 bytes.
KELVANE_UTIL_EXPORT QString findFault(const QByteArray& name);

/// The name as a text for messages, in which a hostile one can neither steer the terminal nor fill
/// it: control characters are replaced, and very long names are cut.
KELVANE_UTIL_EXPORT QString getShownText(const QByteArray& name);

/// Equal for two names that a disk may take for one: compared without regard to case and to how
/// accented letters are composed. 64 bits of a hash over the elements.
KELVANE_UTIL_EXPORT quint64 getFoldedHash(const QByteArray& name);
} // namespace KusMemberPath
