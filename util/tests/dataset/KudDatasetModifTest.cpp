#include <util/dataset/KudDataTableModif.h>
#include <util/dataset/KudDatasetRegistryModif.h>
#include <util/observable/KuoAObservable.h>

namespace
{
/// Sends notices of any class, and keeps the last one.
template <class M>
class Source : public KuoAObservable<M>, public KuoIObserver<M>
{
public:
    Source()
        : KuoAObservable<M>(QStringLiteral("Source"))
    {
        this->addObserver(this);
    }
    ~Source() override { this->removeObserver(this); }
    void update(const M& notice) override { last = notice; }
    M last;
};

/// What observers hear after the notices were merged under a lock.
template <class M>
M merged(const std::vector<M>& notices)
{
    Source<M> source;
    source.lock(true);
    for (const M& notice : notices) {
        source.notify(notice);
    }
    source.commit();
    return source.last;
}

using Reason = KudDatasetModif::Reason;

const KudDatasetVariable au = KudDatasetVariable::createVariable("P", "Au");

// Tables are keys only, so any two addresses serve.
const char addresses[2] = {};
const auto* const tableA = reinterpret_cast<const KudADataTable*>(&addresses[0]);
const auto* const tableB = reinterpret_cast<const KudADataTable*>(&addresses[1]);

KudDatasetModif valuesOf(const KudADataTable* table, int rank)
{
    return KudDatasetModif(table, KudTableModif::ValuesChanged, au,
                           HbiIntervalIntSmallDisjoint(rank));
}
KudDatasetModif added(const char* name)
{
    return KudDatasetModif(KudDatasetModif::TableAdded, QString::fromUtf8(name));
}
KudDatasetModif removed(const char* name)
{
    return KudDatasetModif(KudDatasetModif::TableRemoved, QString::fromUtf8(name));
}

TEST(KudDataTableModif, MergesItsChangeSet)
{
    const auto notice = merged<KudDataTableModif>(
        {KudDataTableModif(KudTableModif::ValuesChanged, au, HbiIntervalIntSmallDisjoint(1)),
         KudDataTableModif(
             KudTableModif(KudTableModif::ValuesChanged, au, HbiIntervalIntSmallDisjoint(2)))});
    EXPECT_EQ(notice.data().changedValues(au),
              HbiIntervalIntSmallDisjoint(HbiIntervalIntSmall(1, 2)));
    EXPECT_EQ(notice.getNumberOfModif(), 2);
    EXPECT_TRUE(KudDataTableModif().isEmpty());
}

TEST(KudDatasetModif, MergesTablesAndNames)
{
    const KudDatasetModif modif = merged<KudDatasetModif>(
        {valuesOf(tableA, 1), added("x"), valuesOf(tableB, 5), valuesOf(tableA, 2), removed("y")});
    EXPECT_EQ(int(modif.reasons()), 0x4 | 0x8 | 0x10);
    EXPECT_EQ(modif.getNumberOfModif(), 4) << "two tables, two reasons with names";
    EXPECT_EQ(modif.modifForTable(tableA).changedValues(au),
              HbiIntervalIntSmallDisjoint(HbiIntervalIntSmall(1, 2)));
    EXPECT_TRUE(modif.hasModifForTable(tableB) && !modif.hasModifForTable(nullptr));
    EXPECT_TRUE(modif.modifForTable(nullptr).isEmpty());
    EXPECT_TRUE(modif.tableAdded("x") && !modif.tableAdded("X") && modif.tableRemoved("y"));
}

TEST(KudDatasetModif, NameListsAreAppendedWholeOnceOneNameIsNew)
{
    const KudDatasetModif xy = merged<KudDatasetModif>({added("x"), added("y")});
    const KudDatasetModif xz = merged<KudDatasetModif>({added("x"), added("z")});
    EXPECT_EQ(merged<KudDatasetModif>({xy, added("x")}).tablesAdded(), QStringList({"x", "y"}));
    EXPECT_EQ(merged<KudDatasetModif>({xy, xz}).tablesAdded(), QStringList({"x", "y", "x", "z"}));
    EXPECT_EQ(merged<KudDatasetModif>({xy, removed("x")}).tablesRemoved(), QStringList("x"));
}

TEST(KudDatasetModif, ResetAbsorbsEverything)
{
    const KudDatasetModif reset(KudDatasetModif::Reset);
    for (const auto& notices : {std::vector<KudDatasetModif>{reset, valuesOf(tableA, 1)},
                                std::vector<KudDatasetModif>{valuesOf(tableA, 1), reset},
                                std::vector<KudDatasetModif>{added("x"), reset, added("y")}}) {
        const KudDatasetModif modif = merged(notices);
        EXPECT_EQ(modif.reasons(), KudDatasetModif::Reset);
        EXPECT_EQ(modif.getNumberOfModif(), 1);
        EXPECT_TRUE(modif.tablesAdded().isEmpty() && !modif.hasModifForTable(tableA));
    }
}

TEST(KudDatasetRegistryModif, PairsOfReasonsOfOneKey)
{
    using Registry = KudDatasetRegistryModif;
    const auto ADDED = Registry::DatasetAdded, REMOVED = Registry::DatasetRemoved,
               MODIFIED = Registry::DatasetModified;
    const struct {
        Registry::Reason first, second, result;
        bool isReset;
    } cases[] = {
        {ADDED, ADDED, ADDED, false},          {ADDED, REMOVED, REMOVED, false},
        {ADDED, MODIFIED, ADDED, false},       {REMOVED, ADDED, MODIFIED, true},
        {REMOVED, REMOVED, REMOVED, false},    {REMOVED, MODIFIED, REMOVED, false},
        {MODIFIED, ADDED, MODIFIED, true},     {MODIFIED, REMOVED, REMOVED, false},
        {MODIFIED, MODIFIED, MODIFIED, false},
    };
    const auto notice = [&](Registry::Reason reason, const char* key, int rank) {
        return Registry(reason, QString::fromUtf8(key),
                        reason == MODIFIED ? valuesOf(tableA, rank) : KudDatasetModif());
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.first << ' ' << c.second);
        const Registry modif = merged<Registry>({notice(c.first, "k", 1), notice(REMOVED, "a", 0),
                                                 notice(c.second, "k", 2), notice(ADDED, "z", 0)});
        EXPECT_EQ(modif.datasetKeys(), QStringList({"a", "k", "z"}));
        EXPECT_EQ(modif.getNumberOfModif(), 3);
        EXPECT_EQ(modif.reason("k"), c.result);
        EXPECT_EQ(modif.reason("a"), REMOVED);
        EXPECT_EQ(modif.datasetModif("k").reasons() == KudDatasetModif::Reset, c.isReset);
    }
    const Registry both = merged<Registry>({notice(MODIFIED, "k", 1), notice(MODIFIED, "k", 2)});
    EXPECT_EQ(both.datasetModif("k").modifForTable(tableA).changedValues(au).getCount(), 2);
    EXPECT_TRUE(!both.hasModif("a") && both.datasetModif("a").isEmpty() && Registry().isEmpty());
}
} // namespace
