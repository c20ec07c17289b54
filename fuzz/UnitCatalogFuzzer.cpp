// The file of the user's units: any bytes load without an error, what was loaded is usable, and a
// file written from it loads as what was written, and is written alike again.
#include "FuzzTarget.h"

#include <util/utils/KuuUnitCatalog.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace
{
QByteArray read(const QString& path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void forgetUnits()
{
    for (const HbuUnit& unit : HbuUnitService::getInstance().getUserUnits())
        HbuUnitService::getInstance().removeUnit(unit.getKey());
}

/// In memory where the system has such a place: a file is written for every input.
QString createTemplate()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFile::exists(memory) ? memory : QDir::tempPath()) + QStringLiteral("/units-XXXXXX");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder(createTemplate());
    const QString input = folder.filePath(QStringLiteral("input.xml"));
    const QString first = folder.filePath(QStringLiteral("first.xml"));
    const QString second = folder.filePath(QStringLiteral("second.xml"));
    {
        QFile file(input);
        require(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(data), qint64(size));
    }
    KuuUnitCatalog& catalog = KuuUnitCatalog::getInstance();
    catalog.loadUserUnits(input);
    const QVector<HbuUnit> loaded = HbuUnitService::getInstance().getUserUnits();
    for (const HbuUnit& unit : loaded)
        require(unit.isValid() && !unit.isNone() && !KuuUnitCatalog::isTemporary(unit.getKey()));
    if (!loaded.isEmpty()) {
        catalog.saveUserUnits(first);
        forgetUnits();
        catalog.loadUserUnits(first);
        require(HbuUnitService::getInstance().getUserUnits().size() == loaded.size());
        catalog.saveUserUnits(second);
        require(read(first) == read(second));
    }
    forgetUnits();
    return 0;
}
