// Catalog files read at the start of an application, beside the bare parsing of their XML.
#include <util/utils/KuuCoordSystemCatalog.h>
#include <util/utils/KuuCoordSystemCatalogFile.h>
#include <util/utils/KuuUnitCatalog.h>

#include <RatioLimits.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtXml/QDomDocument>

#include <benchmark/benchmark.h>

namespace
{
constexpr int COUNT = 10000;

const QTemporaryDir& folder()
{
    static const QTemporaryDir directory;
    return directory;
}

QString writeUnits()
{
    QByteArray text = "<catalog><version>2</version>\n";
    for (int i = 0; i < COUNT; ++i) {
        text += "<unit><key>unit" + QByteArray::number(i) + "</key><name>Unit " +
                QByteArray::number(i) +
                "</name><symbol>u</symbol><transfoFactor>2</transfoFactor>"
                "<unitClass>LENGTH</unitClass><unitSystem>OTHER</unitSystem></unit>\n";
    }
    QFile file(folder().filePath(QStringLiteral("units.xml")));
    file.open(QIODevice::WriteOnly);
    file.write(text + "</catalog>\n");
    return file.fileName();
}

QString writeSystems()
{
    KuuCoordSystemCatalogFile file;
    for (int i = 0; i < COUNT; ++i)
        file.systems.append(
            {QStringLiteral("System %1").arg(i), QString::number(2000 + i), {}, {}});
    const QString path = folder().filePath(QStringLiteral("systems.xml"));
    file.write(path);
    return path;
}

void parse(benchmark::State& state, const QString& path)
{
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        QDomDocument document;
        document.setContent(&file, true);
        benchmark::DoNotOptimize(document.documentElement().firstChild());
    }
}

void forgetUnits()
{
    HbuUnitService& units = HbuUnitService::getInstance();
    for (const HbuUnit& unit : units.getUserUnits())
        units.removeUnit(unit.getKey());
}

void readUnits(benchmark::State& state)
{
    const QString path = writeUnits();
    for (auto _ : state) {
        KuuUnitCatalog::getInstance().loadUserUnits(path);
        state.PauseTiming();
        forgetUnits();
        state.ResumeTiming();
    }
}

void parseUnits(benchmark::State& state)
{
    parse(state, writeUnits());
}

void readSystems(benchmark::State& state)
{
    KuuCoordSystemCatalog& catalog = KuuCoordSystemCatalog::getInstance();
    catalog.setCatalogFiles({writeSystems()});
    for (auto _ : state)
        KuuCoordSystemCatalog::init();
}

void parseSystems(benchmark::State& state)
{
    parse(state, writeSystems());
}

BENCHMARK(readUnits)->Unit(benchmark::kMillisecond);
BENCHMARK(parseUnits)->Unit(benchmark::kMillisecond);
BENCHMARK(readSystems)->Unit(benchmark::kMillisecond);
BENCHMARK(parseSystems)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    qputenv("KELVANE_USER_DIR", QFile::encodeName(folder().path()));
    return runWithLimits(argc, argv,
                         {{"readUnits", "parseUnits", 3}, {"readSystems", "parseSystems", 3}});
}
