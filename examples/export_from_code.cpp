// Exports two variables of a dataset as delimited text, in a thread of its own.
#include <util/calc/KucDataSets.h>
#include <util/calc/KucExportData.h>
#include <util/calc/KucExportDataEncodingCsv.h>
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudMemoryDatasetPoint.h>

#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cstdio>

namespace
{
void addColumn(HbdDataTable& table, const QString& name, int decimals, std::vector<double> values)
{
    HbdVariableDetails details(name);
    details.format = HbbEFormat::DECIMAL;
    details.precision = decimals;
    auto column = std::make_unique<HbdVariableReal>(details);
    column->setValues(std::move(values));
    table.addVariable(std::move(column));
}

QByteArray exportTable(const KudADataset& dataset, const KudDatasetVariableList& variables)
{
    KucExportData job;
    job.setDataset(Kuc::createPoints(dataset, variables));
    job.setUndefString("NA");
    job.setEncodingStrategy(new KucExportDataEncodingCsv( // the job owns it
        "export.csv", KueCsvSeparator::SEMICOLON, KueDecimalSeparator::COMMA));

    // The job borrows the columns: nobody edits the dataset until it has ended. Meanwhile this
    // thread could show job.getCounter() of job.getTotal(), or call job.requestCancel().
    job.start();
    job.wait();
    job.rethrowError(); // what went wrong there is thrown here

    QFile file("export.csv");
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        HbdDataTable columns;
        addColumn(columns, "depth", 1, {0.5, 1.5, 2.5});
        addColumn(columns, "density", 3, {2.6512, HbbGlobal::D_FFFF, 2.7});
        addColumn(columns, "weight", 0, {1.0, 2.0, 3.0});
        KudMemoryDatasetPoint dataset("cores");
        dataset.setDataTable(std::move(columns));

        const KudADataTable& table = *dataset.getPointTable();
        KudDatasetVariableList variables;
        variables.append(table.getVariableFromName("density"));
        variables.append(table.getVariableFromName("depth"));
        const QByteArray text = exportTable(dataset, variables);
        std::printf("%s", text.constData());
        return text == "density;depth\n2,651;0,5\nNA;1,5\n2,700;2,5\n" ? 0 : 1;
    } catch (const HbeError& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
