// Exports samples that came in longitudes and latitudes in a projected system, with a grade in
// another unit, and says what became of the coordinates.
#include <util/calc/KucDataSets.h>
#include <util/calc/KucExportData.h>
#include <util/calc/KucExportDataEncodingCsv.h>
#include <util/dataset/KudMemoryDatasetPoint.h>

#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeError.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cstdio>

namespace
{
void addColumn(HbdDataTable& table, const HbdVariableDetails& details, std::vector<double> values)
{
    auto column = std::make_unique<HbdVariableReal>(details);
    column->setValues(std::move(values));
    table.addVariable(std::move(column));
}

HbuUnit concentration(const char* key)
{
    return HbuUnitService::getInstance().getUnit(HbuEUnitClass::CONCENTRATION, key);
}

HbdDataTable createSamples()
{
    HbdVariableDetails zinc("zinc");
    zinc.unit = concentration("ppm"); // what the numbers are
    zinc.format = HbbEFormat::DECIMAL;
    zinc.precision = 0;
    HbdDataTable table;
    // The role makes a column a coordinate. The third sample was never surveyed.
    addColumn(table, HbdVariableDetails("lon", HbdEVarType::REAL, HbdEVarRole::X_COORDINATE),
              {3.0, 2.5, HbbGlobal::D_FFFF});
    addColumn(table, HbdVariableDetails("lat", HbdEVarType::REAL, HbdEVarRole::Y_COORDINATE),
              {46.5, 46.5, HbbGlobal::D_FFFF});
    addColumn(table, zinc, {250, 40, 12000});
    return table;
}
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        KudMemoryDatasetPoint dataset("samples");
        dataset.setDataTable(createSamples());
        dataset.setCoordSystem(KuuCoordSystem::createFromEpsg("4171"));

        KucExportData job;
        job.setDataset(Kuc::createPoints(dataset, Kuc::getExportedVariables(dataset)));
        job.setCoordSystems(dataset.getCoordSystem(), KuuCoordSystem::createFromEpsg("2154"));
        job.setUnit("zinc", concentration("%")); // 250 ppm are 0.0250 %: no digit is lost
        job.setUndefString("NA");
        job.setEncodingStrategy(new KucExportDataEncodingCsv( // the job owns it
            "lambert.csv", KueCsvSeparator::COMMA, KueDecimalSeparator::DOT));
        if (!job.runInCurrentThread())
            job.rethrowError();
        std::printf("%s\n\n", qUtf8Printable(job.getConversionReport()));

        QFile file("lambert.csv");
        const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        std::printf("%s", text.constData());
        return text == "lon,lat,zinc\n"
                       "700000.000,6600000.000,0.0250\n"
                       "661655.380,6600121.402,0.0040\n"
                       "NA,NA,1.2000\n"
                   ? 0
                   : 1;
    } catch (const HbeError& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
