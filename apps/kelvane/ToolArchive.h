#pragma once

#include <QtCore/QString>

class KusArchive;

/// What the commands that work on archives share.
namespace ToolArchive
{
/// Runs the operation to its end with a bar that names the archive and, on a terminal, the member
/// at work. Ctrl-C cancels it. What ends it is thrown.
void run(KusArchive& archive, const QString& archivePath);

/// "4404019 bytes (4.20 MiB)".
QString getSizeText(qint64 bytes);

/// "12 members, 4404019 bytes (4.20 MiB)".
QString getCountText(qint64 members, qint64 bytes);
} // namespace ToolArchive
