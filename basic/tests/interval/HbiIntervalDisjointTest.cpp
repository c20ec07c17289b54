#include <basic/interval/HbiIntervalIntSmallDisjoint.h>
#include <basic/interval/HbiIntervalIntSmallO64Disjoint.h>

#include <limits>
#include <set>

namespace
{
/// A plain model: one flag for each rank of a window of ranks.
template <class Set>
class Model
{
public:
    using Rank = typename Set::Rank;
    using Interval = typename Set::Interval;

    Model(Rank base, std::size_t size)
        : m_base(base)
        , m_flags(size, false)
    {
    }
    Rank base() const { return m_base; }
    std::size_t size() const { return m_flags.size(); }
    Rank rank(std::size_t i) const { return Rank(m_base + Rank(i)); }
    bool test(std::size_t i) const { return m_flags[i] != 0; }
    void fill(std::size_t first, std::size_t last, bool present)
    {
        std::fill(m_flags.begin() + first, m_flags.begin() + last + 1, present);
    }
    template <class Operation>
    void combine(const Model& other, Operation operation)
    {
        for (std::size_t i = 0; i < size(); ++i)
            m_flags[i] = operation(m_flags[i], other.m_flags[i]);
    }
    void insertGap(std::size_t at, std::size_t n)
    {
        m_flags.insert(m_flags.begin() + at, n, false);
        m_flags.resize(m_flags.size() - n);
    }
    void removeRanks(const Model& removed)
    {
        std::vector<char> kept;
        for (std::size_t i = 0; i < size(); ++i) {
            if (!removed.m_flags[i])
                kept.push_back(m_flags[i]);
        }
        kept.resize(size());
        m_flags = kept;
    }

    QVector<Interval> intervals() const
    {
        QVector<Interval> result;
        for (std::size_t i = 0; i < size(); ++i) {
            const std::size_t first = i;
            while (i < size() && m_flags[i])
                ++i;
            if (i > first)
                result.append(Interval(rank(first), rank(i - 1)));
        }
        return result;
    }

private:
    Rank m_base;
    std::vector<char> m_flags;
};

/// Everything that can be read agrees with the model.
template <class Set>
void expectSame(const Set& set, const Model<Set>& model)
{
    using Interval = typename Set::Interval;
    const QVector<Interval> expected = model.intervals();
    ASSERT_EQ(set.getIntervals(), expected);
    ASSERT_EQ(set.getIntervalCount(), expected.size());
    qint64 count = 0;
    Set rebuilt;
    for (auto it = expected.crbegin(); it != expected.crend(); ++it) {
        count += it->getLength();
        rebuilt.add(*it);
    }
    ASSERT_EQ(set.getCount(), count);
    ASSERT_TRUE(set == rebuilt);
    ASSERT_EQ(set.isEmpty(), expected.isEmpty());
    ASSERT_EQ(set.getMin(), expected.isEmpty() ? 0 : expected.first().getMin());
    ASSERT_EQ(set.getMax(), expected.isEmpty() ? -1 : expected.last().getMax());
}

template <class Set>
void expectSameQueries(const Set& set, const Model<Set>& model, std::mt19937& random)
{
    using Interval = typename Set::Interval;
    for (int i = 0; i < 50; ++i) {
        const std::size_t first = random() % model.size();
        const std::size_t last = std::min(first + random() % 40, model.size() - 1);
        bool all = true;
        bool any = false;
        for (std::size_t k = first; k <= last; ++k) {
            all = all && model.test(k);
            any = any || model.test(k);
        }
        const Interval interval(model.rank(first), model.rank(last));
        ASSERT_EQ(set.contains(model.rank(first)), model.test(first));
        ASSERT_EQ(set.contains(interval), all);
        ASSERT_EQ(set.intersects(interval), any);
    }
}

template <class Set>
class DisjointTest : public testing::Test
{
};
using Sets = testing::Types<HbiIntervalIntSmallDisjoint, HbiIntervalIntSmallO64Disjoint>;
TYPED_TEST_SUITE(DisjointTest, Sets);

/// Random single ranks, ranges and whole sets, over windows at both ends of the type and around
/// zero; windows of several bitmaps are filled densely enough to pass through every storage form.
TYPED_TEST(DisjointTest, FollowsAModelUnderRandomOperations)
{
    using Set = TypeParam;
    using Rank = typename Set::Rank;
    using Interval = typename Set::Interval;
    using Limits = std::numeric_limits<Rank>;
    struct Case {
        Rank base;
        std::size_t size;
        int steps;
        int burst; // single ranks added at once
    };
    const Case cases[] = {{-20, 40, 4000, 3},
                          {Limits::min(), 300, 1500, 20},
                          {Limits::max() - 299, 300, 1500, 20},
                          {-200000, 400000, 150, 20000},
                          {Limits::min(), 200000, 100, 3000},
                          {Limits::max() - 299999, 300000, 150, 900}};
    std::mt19937 random(7);
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "base " << c.base << " size " << c.size);
        Model<Set> model(c.base, c.size);
        Model<Set> otherModel(c.base, c.size);
        Set set;
        Set other;
        for (int step = 0; step < c.steps; ++step) {
            const std::size_t first = random() % c.size;
            const std::size_t span =
                random() % 4 == 0 ? c.size : std::max<std::size_t>(c.size / 50, 3);
            const std::size_t last = std::min(first + random() % span, c.size - 1);
            const Interval range(model.rank(first), model.rank(last));
            switch (random() % 12) {
            case 0:
                set.add(range);
                model.fill(first, last, true);
                break;
            case 1:
            case 2:
                set.subtract(range);
                model.fill(first, last, false);
                break;
            case 3:
                set.unite(other);
                model.combine(otherModel, std::logical_or<>());
                break;
            case 4:
                set.subtract(other);
                model.combine(otherModel, std::greater<>());
                break;
            case 5: {
                const Set before(set);
                EXPECT_EQ(set.intersects(other), !set.intersected(other).isEmpty());
                set.intersect(other);
                model.combine(otherModel, std::logical_and<>());
                EXPECT_TRUE(before.intersected(set) == set);
                break;
            }
            case 6:
                set = set.complement(Interval(model.rank(0), model.rank(c.size - 1)));
                model.combine(model, [](bool flag, bool) { return !flag; });
                break;
            case 7:
                if (c.base + Rank(c.size - 1) == Limits::max()) { // what leaves the type is lost
                    set.insertGap(model.rank(first), Rank(last - first));
                    model.insertGap(first, last - first);
                }
                break;
            case 8:
                set.removeRanks(other);
                model.removeRanks(otherModel);
                break;
            case 9:
                std::swap(set, other);
                std::swap(model, otherModel);
                break;
            default:
                std::vector<Rank> ranks;
                for (int i = 0; i < c.burst; ++i) {
                    const std::size_t at = random() % c.size;
                    ranks.push_back(model.rank(at));
                    model.fill(at, at, true);
                }
                Set added;
                Set addedAtOnce;
                for (const Rank rank : ranks)
                    (step % 2 ? set : added).add(rank);
                std::sort(ranks.begin(), ranks.end());
                (step % 2 ? added : set).addSorted(ranks.data(), ranks.size());
                addedAtOnce.addSorted(ranks.data(), ranks.size());
                EXPECT_TRUE(addedAtOnce == added);
            }
            expectSame(set, model);
            expectSameQueries(set, model, random);
            ASSERT_EQ(set == other, model.intervals() == otherModel.intervals());
            if (testing::Test::HasFatalFailure())
                return;
        }
    }
}

/// Ranks scattered over the whole type, as no bitmap would hold them.
TYPED_TEST(DisjointTest, HoldsScatteredRanks)
{
    using Set = TypeParam;
    using Rank = typename Set::Rank;
    std::mt19937_64 random(11);
    Set set;
    std::set<Rank> model;
    for (int i = 0; i < 20000; ++i) {
        const Rank rank = Rank(random());
        set.add(rank);
        model.insert(rank);
    }
    const auto ranks = set.ranks();
    EXPECT_TRUE(std::equal(model.begin(), model.end(), ranks.begin(), ranks.end()));
    for (int i = 0; i < 2000; ++i) {
        const Rank a = Rank(random());
        const Rank b = Rank(random());
        if (b < a || quint64(b) - quint64(a) > (quint64(1) << (sizeof(Rank) * 8 - 8)))
            continue;
        set.subtract(typename Set::Interval(a, b));
        model.erase(model.lower_bound(a), model.upper_bound(b));
    }
    EXPECT_TRUE(std::equal(model.begin(), model.end(), set.ranks().begin(),
                           typename std::decay_t<decltype(set.ranks().begin())>()));
    EXPECT_EQ(std::size_t(set.getCount()), model.size());
}

TYPED_TEST(DisjointTest, TheWholeTypeIsLegal)
{
    using Set = TypeParam;
    using Interval = typename Set::Interval;
    using Limits = std::numeric_limits<typename Set::Rank>;
    const Interval all(Limits::min(), Limits::max());
    Set set(all);
    set.subtract(Interval(0, 0));
    EXPECT_EQ(set.getIntervals(),
              (QVector<Interval>{Interval(Limits::min(), -1), Interval(1, Limits::max())}));
    EXPECT_TRUE(set.complement(all) == Set(0));
    set.add(0);
    EXPECT_TRUE(set == Set(all));
    EXPECT_TRUE(Set().complement(all) == set);
    EXPECT_TRUE(set.complement(all).isEmpty());
    EXPECT_EQ(set.getCount(), all.getLength());

    Set ends{Interval(Limits::min(), Limits::min()), Interval(Limits::max(), Limits::max())};
    EXPECT_EQ(ends.getIntervalCount(), 2); // the two ends of the type do not touch
    ends.subtract(Set(Limits::min()));
    EXPECT_TRUE(ends == Set(Limits::max()));
}

TYPED_TEST(DisjointTest, CopiesAreIndependentAndWalksAreSnapshots)
{
    using Set = TypeParam;
    using Rank = typename Set::Rank;
    Set set;
    for (Rank rank = 0; rank < 5000; rank += 2)
        set.add(rank);
    const Set copy = set;
    qint64 sum = 0;
    for (Rank rank : set.ranks()) {
        set.add(rank + 1);
        set.subtract(Set(rank));
        sum += rank;
    }
    EXPECT_EQ(sum, 2499 * 2500);
    EXPECT_EQ(copy.getCount(), 2500);
    EXPECT_FALSE(copy.intersects(set));
    EXPECT_EQ(set.getCount(), 2500);
    Set moved = std::move(set);
    set.clear();
    EXPECT_EQ(moved.getMax(), 4999);
    Set united = copy;
    EXPECT_TRUE(united.unite(moved) == Set(typename Set::Interval(0, 4999)));
    EXPECT_TRUE(moved.subtract(moved).isEmpty());

    qint64 visited = 0;
    Set(typename Set::Interval(std::numeric_limits<Rank>::max() - 2,
                               std::numeric_limits<Rank>::max()))
        .forEachRank([&](Rank) { ++visited; });
    EXPECT_EQ(visited, 3);
}

static_assert(sizeof(HbiIntervalIntSmallDisjoint) == 16);
static_assert(sizeof(HbiIntervalIntSmallO64Disjoint) == 24);
static_assert(std::is_nothrow_move_constructible_v<HbiIntervalIntSmallDisjoint>);
static_assert(std::is_nothrow_move_assignable_v<HbiIntervalIntSmallDisjoint>);
static_assert(std::is_nothrow_copy_constructible_v<HbiIntervalIntSmallDisjoint>);
} // namespace
