// Views share a dataset of the registry: it lives as long as one of them holds it.
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudDatasetRegistry.h>
#include <util/dataset/KudMemoryDatasetPoint.h>

#include <basic/error/HbeError.h>

#include <cstdio>

namespace
{
/// A list of all datasets, as a tree beside the views would keep it.
class Overview : public KuoIObserver<KudDatasetRegistryModif>
{
public:
    Overview() { KudDatasetRegistry::getInstance().addObserver(this); }
    ~Overview() override { KudDatasetRegistry::getInstance().removeObserver(this); }
    Overview(const Overview&) = delete;
    Overview& operator=(const Overview&) = delete;

    void update(const KudDatasetRegistryModif&) override
    {
        std::printf("%d datasets:", KudDatasetRegistry::getKeys().size());
        for (const QString& key : KudDatasetRegistry::getKeys()) {
            const QStringList borrowers = KudDatasetRegistry::getBorrowers(key);
            std::printf(" %s (%s)", qPrintable(KudDatasetRegistry::getDataset(key)->getName()),
                        qPrintable(borrowers.join(", ")));
        }
        std::printf("\n");
    }
};

int run()
{
    const Overview overview;
    auto wells =
        KudDatasetRegistry::add(std::make_unique<KudMemoryDatasetPoint>("wells"), "import");

    // Another party knows the key only, and asks for the type that it can show.
    KudDatasetPointer<KudMemoryDatasetPoint> map(wells.getKey(), "map");
    wells.reset(); // the import is done
    map->getPointTable()->createVariable(HbdVariableDetails("depth", HbdEVarType::REAL));

    // Who keeps what he was handed borrows under a name of his own.
    const KudDatasetPointer<const KudADataset> report(map, "report");
    map.reset();
    std::printf("the report still has '%s'\n", qPrintable(report->getName()));

    // At shutdown: what was not returned is named, and its pointers become null.
    KudDatasetRegistry::clearRemainingDatasets();
    return report ? 1 : 0;
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
