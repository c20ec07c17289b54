// Reads a table of samples, then edits it while an observer listens.
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudDatasetModif.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/extern/KueTableReader.h>

#include <basic/data/HbdColumnSummary.h>
#include <basic/error/HbeError.h>

#include <QtCore/QFile>

#include <cstdio>
#include <vector>

namespace
{
const char TABLE[] = "easting,northing,rock,zinc\n"
                     "652100,6862010,schist,112.5\n"
                     "652150,6862040,granite,\n"
                     "652210,6862090,schist,87.25\n";

/// Prints what every notice says.
class Listener : public KuoIObserver<KudDatasetModif>
{
public:
    void update(const KudDatasetModif& notice) override
    {
        ++m_count;
        const KudTableModif changes = notice.modifForTable(notice.dataset()->getObjectTable());
        std::printf("notice %d: reasons 0x%x\n", m_count, unsigned(changes.reasons()));
    }
    int getCount() const { return m_count; }

private:
    int m_count = 0;
};

KueTableResult readTable(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(TABLE);
    file.close();
    return KueTableReader().read(path);
}

int run()
{
    // Each column has the type that holds all its cells; coordinates are known by their names.
    KueTableResult result = readTable("samples.csv");
    for (const QString& note : result.notes)
        std::printf("%s\n", qPrintable(note));

    KudMemoryDatasetPoint dataset("samples");
    dataset.setDataTable(std::move(result.table));
    KudADataTable& table = *dataset.getPointTable();
    const KudDatasetVariable zinc = table.getVariableFromName("zinc");
    const HbdColumnSummary summary = HbdColumnSummary::of(*table.readValues(zinc));
    std::printf("zinc: %lld defined, %lld undefined, mean %g\n", summary.defined, summary.undefined,
                summary.mean);

    Listener listener;
    dataset.addObserver(&listener);
    table.updateValue(zinc, 1, 95.0); // one cell, one notice

    // A whole column at once is one notice, too: so write what a calculation made.
    const std::vector<double> zincs = {110.0, 95.0, 90.0};
    table.updateColumn(zinc, 0, HbdSpan<const double>(zincs.data(), int(zincs.size())));

    // What is refused changes nothing and tells nobody.
    table.setFlag(Ku::ReadOnlyValues);
    const bool refused = !table.updateValue(zinc, 0, 0.0);
    dataset.removeObserver(&listener);
    return refused && listener.getCount() == 2 ? 0 : 1;
}
} // namespace

int main()
{
    try {
        return run();
    } catch (const HbeError& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
