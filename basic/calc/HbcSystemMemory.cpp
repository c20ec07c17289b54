#include "HbcSystemMemory.h"

#include <QtCore/QFile>

#include <algorithm>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace
{
// The kernel's own estimate, which counts caches that it can drop; 0 where there is none.
qint64 readMemInfo()
{
    QFile file(QStringLiteral("/proc/meminfo"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray name = "MemAvailable:";
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.startsWith(name)) {
            const QByteArray number = line.mid(name.size()).simplified().split(' ').first();
            return number.toLongLong() * 1024;
        }
    }
    return 0;
}
} // namespace

qint64 HbcSystemMemory::getAvailable()
{
    qint64 bytes = readMemInfo();
#ifdef _SC_AVPHYS_PAGES
    if (bytes == 0)
        bytes = qint64(sysconf(_SC_AVPHYS_PAGES)) * sysconf(_SC_PAGESIZE);
#endif
    return std::max<qint64>(bytes, 1);
}
