// Catalog files of coordinate systems: any bytes give a catalog, without an error; what was read
// has the promised form, and reads back the same when it is written.
#include "FuzzTarget.h"

#include <util/utils/KuuCoordSystemCatalogFile.h>

namespace
{
using File = KuuCoordSystemCatalogFile;

void checkSystems(const QVector<File::System>& systems, bool areFavorites)
{
    for (const File::System& system : systems) {
        require(!system.name.isEmpty() && File::toName(system.name) == system.name);
        for (const QString& text : {system.epsg, system.ignf, system.proj4})
            require(File::toLine(text) == text);
        require(areFavorites || !system.epsg.isEmpty() || !system.ignf.isEmpty() ||
                !system.proj4.isEmpty());
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const File file = File::fromBytes(bytes, QStringLiteral("fuzz"));
    checkSystems(file.systems, false);
    checkSystems(file.geographicFavorites, true);
    checkSystems(file.projectedFavorites, true);
    if (file.state != File::State::READ) {
        require(file.systems.isEmpty() && !file.hasFavorites);
        return 0;
    }
    const File again = File::fromBytes(file.toBytes(), QStringLiteral("fuzz"));
    require(again.state == File::State::READ && again.systems == file.systems &&
            again.hasFavorites == file.hasFavorites &&
            again.geographicFavorites == file.geographicFavorites &&
            again.projectedFavorites == file.projectedFavorites);
    return 0;
}
