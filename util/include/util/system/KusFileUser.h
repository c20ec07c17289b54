#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

/// Where the files of the user live that belong to no project: own units, favourite coordinate
/// systems, preferences. One place for the whole process; any thread may ask.
///
/// An application that keeps them elsewhere says so at its start. Otherwise it is the directory
/// that the environment variable KELVANE_USER_DIR names, or "kelvane" in the directory where the
/// desktop keeps the user's settings (~/.config on Linux).
namespace KusFileUser
{
/// An empty path goes back to the default. Returns the path that was set before, if any.
KELVANE_UTIL_EXPORT QString setDirectory(const QString& path);
/// It need not exist.
KELVANE_UTIL_EXPORT QString getDirectory();
/// The path of a file in it.
KELVANE_UTIL_EXPORT QString getPath(const QString& fileName);
/// The same for a file that is about to be written: the directory is made where it is missing.
/// HbeDiskError when that fails.
KELVANE_UTIL_EXPORT QString createPath(const QString& fileName);
} // namespace KusFileUser
