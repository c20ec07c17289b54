#include "CapturedLog.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudDatasetRegistryLockObserver.h>
#include <util/dataset/KudGenericDatasetFactory.h>
#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/dataset/KudSelector.h>

#include <basic/error/HbeProgrammingError.h>

#include <functional>

namespace
{
using Registry = KudDatasetRegistry;
using Pointer = KudDatasetPointer<KudADataset>;
using Reason = KudDatasetRegistryModif;

int g_alive = 0;

/// A dataset of a given identity, with a serial number of its own.
class Dataset : public KudMemoryDatasetPoint
{
public:
    explicit Dataset(const QString& id = KuuId::generate("Dataset").getUuid(), int number = 0)
        : KudMemoryDatasetPoint("d")
        , serial(number)
    {
        setId(KuuId(getMementoRelation(), id));
        ++g_alive;
    }
    ~Dataset() override { --g_alive; }
    const int serial;
};

QString key(int i)
{
    return QUuid(uint(i), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0).toString(QUuid::WithoutBraces);
}

class Listener : public KuoIObserver<KudDatasetRegistryModif>
{
public:
    Listener() { Registry::getInstance().addObserver(this); }
    ~Listener() override { Registry::getInstance().removeObserver(this); }
    void update(const KudDatasetRegistryModif& notice) override
    {
        for (const QString& key : notice.datasetKeys())
            heard.append(key + "+-*"[notice.reason(key)]);
        if (onUpdate)
            onUpdate(notice);
    }
    QStringList heard; ///< key, then + added, - removed, * modified
    std::function<void(const KudDatasetRegistryModif&)> onUpdate;
};

class KudDatasetRegistryTest : public testing::Test
{
protected:
    ~KudDatasetRegistryTest() override
    {
        Registry::clearRemainingDatasets();
        EXPECT_EQ(g_alive, 0);
    }
    CapturedLog m_log;
    QStringList& m_printed = m_log.texts;
};

/// Random operations on pointers, and more of them from inside the notices, beside a plain record
/// of what each pointer stands for: a dataset is held as long as a pointer stands for it.
class RandomWalk
{
public:
    explicit RandomWalk(unsigned seed)
        : m_random(seed)
    {
        m_listener.onUpdate = [this](const KudDatasetRegistryModif& notice) {
            compare();
            const QString key = notice.datasetKeys().first();
            EXPECT_EQ(notice.reason(key) != Reason::DatasetRemoved, Registry::hasDataset(key));
            if (m_depth < 3 && pick(2) == 0)
                step();
        };
    }

    void step()
    {
        ++m_depth;
        const int a = pick(SIZE);
        const int b = pick(SIZE); // at times the same
        const QString name = pick(2) ? "view" : "tool";
        const int place = pick(3); // of the three keys
        Borrowing& mine = m_record[a];
        Const& pointer = m_pointers[a];
        const Borrowing before = m_record[b];
        const std::function<void()> operations[] = {
            [&] { add(a, place, name); },
            [&] { mine = before, pointer = m_pointers[b]; },
            [&] { m_record[b] = {}, mine = before, pointer = std::move(m_pointers[b]); },
            [&] { std::swap(mine, m_record[b]), swap(pointer, m_pointers[b]); },
            [&] { mine = {}, pointer.reset(); },
            [&] {
                mine = Borrowing{heldAt(place), name}, pointer = Points(key(place), name);
            },
            [&] {
                mine = Borrowing{before.serial, name}, pointer = Const(m_pointers[b], name);
            },
            [&] {
                mine = isHeld(before.serial) ? before : Borrowing(),
                pointer = m_pointers[b].dynamicCast<const KudMemoryDatasetPoint>();
            },
            [&] { mine = {}, pointer = Grids(key(place), name); }, // of another kind
            [&] { endByForce(a); },
        };
        operations[pick(10)]();
        compare();
        if (--m_depth == 0) {
            EXPECT_EQ(g_alive, Registry::getKeys().size());
        }
    }

private:
    using Const = KudDatasetPointer<const KudADataset>;
    using Points = KudDatasetPointer<const KudMemoryDatasetPoint>;
    using Grids = KudDatasetPointer<KudMemoryDatasetGrid>;
    struct Borrowing {
        int serial = 0; // of a dataset; its key follows from it
        QString borrower;
    };
    static constexpr int SIZE = 6;

    int pick(int count) { return int(m_random() % unsigned(count)); }
    static QString keyOf(int serial) { return key(serial % 3); }
    bool isHeld(int serial) const { return serial != 0 && !m_ended.contains(serial); }
    int heldAt(int place) const
    {
        for (const Borrowing& borrowing : m_record) {
            if (isHeld(borrowing.serial) && borrowing.serial % 3 == place)
                return borrowing.serial;
        }
        return 0;
    }

    void add(int a, int place, const QString& name)
    {
        const int serial = 3 * ++m_lastSerial + place;
        auto dataset = std::make_unique<Dataset>(keyOf(serial), serial);
        if (heldAt(place) != 0) {
            EXPECT_THROW(Registry::add(std::move(dataset), name), HbeProgrammingError);
            return;
        }
        Borrowing& hand = m_record[SIZE + m_depth]; // what is on its way
        hand = Borrowing{serial, name};
        auto pointer = Registry::add(std::move(dataset), name);
        m_record[a] = std::exchange(hand, Borrowing());
        m_pointers[a] = std::move(pointer);
    }

    void endByForce(int a)
    {
        const int serial = m_record[a].serial;
        if (pick(3) != 0 || !isHeld(serial))
            return;
        m_ended.insert(serial);
        delete m_pointers[a].get();
    }

    void compare() const
    {
        QMap<QString, QStringList> expected;
        for (const Borrowing& borrowing : m_record) {
            if (isHeld(borrowing.serial))
                expected[keyOf(borrowing.serial)] << borrowing.borrower;
        }
        ASSERT_EQ(Registry::getKeys(), QStringList(expected.keys()));
        for (auto held = expected.begin(); held != expected.end(); ++held) {
            QStringList borrowers = Registry::getBorrowers(held.key());
            borrowers.sort();
            held->sort();
            ASSERT_EQ(borrowers, *held);
        }
        for (int i = 0; i < SIZE; ++i) {
            const int serial = m_record[i].serial;
            const auto* dataset = dynamic_cast<const Dataset*>(m_pointers[i].get());
            ASSERT_EQ(dataset == nullptr ? 0 : dataset->serial, isHeld(serial) ? serial : 0);
            ASSERT_EQ(Registry::getKey(dataset), isHeld(serial) ? keyOf(serial) : QString());
        }
    }

    std::mt19937 m_random;
    int m_lastSerial = 0;
    int m_depth = 0;
    QSet<int> m_ended; // by force
    Borrowing m_record[SIZE + 5];
    Const m_pointers[SIZE];
    Listener m_listener;
};

TEST_F(KudDatasetRegistryTest, pointersKeepTheBooksWhateverIsDoneWithThem)
{
    for (unsigned seed = 0; seed < 200 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomWalk walk(seed);
        for (int i = 0; i < 100 && !HasFailure(); ++i)
            walk.step();
    }
}

TEST_F(KudDatasetRegistryTest, observersHearOfADatasetWhileItLives)
{
    Listener listener;
    auto pointer = Registry::add(std::make_unique<Dataset>(), "view");
    const QString key = pointer.getKey();
    listener.onUpdate = [](const auto&) { EXPECT_EQ(g_alive, 1); };
    pointer->getPointTable()->createVariable(HbdVariableDetails("v", HbdEVarType::REAL));
    {
        const KudDatasetRegistryLockObserver lock(&listener);
        pointer->notifyReset();
    }
    const KudADataset* raw = pointer.get();
    Pointer twice = pointer; // the view again
    pointer.reset();
    EXPECT_EQ(Registry::getBorrowers(key), QStringList{"view"});
    twice.reset();
    EXPECT_EQ(listener.heard, QStringList({key + '+', key + '*', key + '-'}));
    EXPECT_EQ(Registry::getKey(raw), QString());
    EXPECT_EQ(g_alive, 0);
}

TEST_F(KudDatasetRegistryTest, anObserverMayEndTheDatasetThatIsBeingEdited)
{
    const std::function<void(KudADataTable&)> edits[] = {
        [](KudADataTable& table) {
            table.createSample({{table.getVariableAt(0), 1.0}});
        },
        [](KudADataTable& table) { table.updateValue(table.getVariableAt(0), 0, 4.0); },
        [](KudADataTable& table) { table.deleteSample(0); },
        [](KudADataTable& table) { table.deleteVariable(table.getVariableAt(0)); },
        [](KudADataTable& table) {
            table.getMask()->select(HbiIntervalIntSmallDisjoint(0), Ku::Select);
        },
    };
    for (const auto& edit : edits) {
        auto pointer = Registry::add(std::make_unique<Dataset>(), "tool");
        KudADataTable* table = pointer->getPointTable();
        table->createVariable(HbdVariableDetails("v", HbdEVarType::REAL));
        table->createSamples({{0.0}, {1.0}});
        Listener listener;
        listener.onUpdate = [&](const auto&) { pointer.reset(); };
        edit(*table);
        EXPECT_EQ(listener.heard.size(), 2); // modified, removed
    }
}

TEST_F(KudDatasetRegistryTest, anObserverThatThrowsReachesTheCallerAndLeavesNothingBehind)
{
    Listener listener;
    listener.onUpdate = [](const auto&) { throw HbeProgrammingError("no"); };
    EXPECT_THROW(Registry::add(std::make_unique<Dataset>(), "view"), HbeProgrammingError);
    EXPECT_EQ(m_printed, QStringList{"no"});
    EXPECT_EQ(g_alive, 0);
}

TEST_F(KudDatasetRegistryTest, createTakesTheIdentityOfTheMemento)
{
    const KuuMemento memento = KudMemoryDatasetPoint("saved").getMemento();
    EXPECT_THROW(Registry::create(memento), HbeProgrammingError); // no factory
    const KudGenericDatasetFactory factory;
    Registry::setDatasetFactory(&factory);
    const Pointer pointer = Registry::create(memento, "view");
    EXPECT_EQ(pointer.getKey(), memento.getId().getUuid());
    EXPECT_EQ(pointer->getName(), "saved");
    EXPECT_THROW(Registry::create(memento), HbeProgrammingError); // held
    EXPECT_THROW(Pointer(pointer, QString()), HbeProgrammingError);
    Registry::setDatasetFactory(nullptr);

    EXPECT_EQ(Registry::getSharedDatasetKeyFromSourceId(pointer->getSourceId()), QString());
    pointer->setDatasetShared(true);
    EXPECT_EQ(Registry::getSharedDatasetKeyFromSourceId(pointer->getSourceId()), pointer.getKey());
}

TEST_F(KudDatasetRegistryTest, clearingReportsAndLeavesWhatComesMeanwhile)
{
    const QString keys[] = {key(1), key(2)};
    auto first = Registry::add(std::make_unique<Dataset>(keys[0]), "a<b>");
    const auto again = first;
    auto second = Registry::add(std::make_unique<Dataset>(keys[1]), "tool");
    Pointer newcomer;
    Listener listener;
    listener.onUpdate = [&](const KudDatasetRegistryModif& notice) {
        if (!notice.hasModif(keys[0]) || notice.reason(keys[0]) != Reason::DatasetRemoved)
            return;
        EXPECT_TRUE(first); // a last look
        EXPECT_FALSE(Pointer(keys[0], "late"));
        newcomer = Registry::add(std::make_unique<Dataset>(keys[0]), "new");
        second.reset(); // before its turn
    };
    Registry::clearRemainingDatasets();
    EXPECT_FALSE(first || again || second);
    first = again;
    EXPECT_EQ(Registry::getBorrowers(keys[0]), QStringList{"new"});
    EXPECT_EQ(m_printed.value(0),
              QString("Clear datasets: there are still registered datasets:<br/><b>%1</b><br/>"
                      "ref count = 2<br/>borrowers = a&lt;b&gt;, a&lt;b&gt;<br/><b>%2</b><br/>"
                      "ref count = 1<br/>borrowers = tool")
                  .arg(keys[0], keys[1]));

    second = Registry::add(std::make_unique<Dataset>(keys[1]), "tool");
    listener.onUpdate = [](const auto&) { Registry::clearRemainingDatasets(); };
    Registry::clearRemainingDatasets();
    EXPECT_EQ(Registry::getKeys(), QStringList());
}

/// Returned after main: whatever is gone by then, the registry is there.
Pointer g_forgotten;

TEST(KudDatasetRegistry, aBorrowingMayBeReturnedAtTheEndOfTheProcess)
{
    g_forgotten = Registry::add(std::make_unique<Dataset>(), "static");
    EXPECT_TRUE(g_forgotten);
}
} // namespace
