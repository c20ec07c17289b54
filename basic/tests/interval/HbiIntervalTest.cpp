#include <basic/interval/HbiIntervalData.h>
#include <basic/interval/HbiIntervalIntSmall.h>
#include <basic/interval/HbiIntervalIntSmallO64.h>

#include <limits>

namespace
{
using Interval = HbiIntervalIntSmall;
constexpr int LOWEST = std::numeric_limits<int>::min();
constexpr int HIGHEST = std::numeric_limits<int>::max();
constexpr double UNDEFINED = HbbGlobal::D_FFFF;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

TEST(HbiIntervalIntSmallTest, LengthsReachTheEndsOfTheType)
{
    static_assert(Interval().isEmpty() && Interval() == Interval(3, 2));
    static_assert(Interval().getLength() == 0 && Interval(-4, -4).getLength() == 1);
    static_assert(Interval(LOWEST, HIGHEST).getLength() == qint64(1) << 32);
    using Limits = std::numeric_limits<qint64>;
    using Wide = HbiIntervalIntSmallO64;
    static_assert(Wide(0, Limits::max() - 1).getLength() == Limits::max());
    static_assert(Wide(Limits::min(), Limits::max()).getLength() == Limits::max());
}

TEST(HbiIntervalIntSmallTest, RelationsAgreeWithTheRanksTheyHold)
{
    for (int code = 0; code < 7 * 7 * 7 * 7; ++code) {
        const Interval a(code % 7 - 3, code / 7 % 7 - 3);
        const Interval b(code / 49 % 7 - 3, code / 343 - 3);
        qint64 common = 0;
        for (int rank = -4; rank <= 4; ++rank) {
            ASSERT_EQ(a.intersected(b).contains(rank), a.contains(rank) && b.contains(rank));
            common += a.contains(rank) && b.contains(rank);
        }
        ASSERT_EQ(a.intersects(b), common > 0);
        ASSERT_EQ(a.contains(b), common == b.getLength());
        ASSERT_EQ(a == b, common == a.getLength() && common == b.getLength());
    }
}

TEST(HbiIntervalDataTest, UndefinedValuesAreIgnored)
{
    HbiIntervalData interval;
    interval.unite(NOT_A_NUMBER);
    interval.unite(UNDEFINED);
    EXPECT_FALSE(interval.isValid());
    EXPECT_EQ(interval.getLength(), 0.0);
    for (double value : {2.0, UNDEFINED, -1.5, NOT_A_NUMBER, 0.0})
        interval.unite(value);
    EXPECT_TRUE(interval == HbiIntervalData(-1.5, 2.0));
    EXPECT_EQ(interval.getLength(), 3.5);
    EXPECT_TRUE(interval.contains(2.0) && interval.contains(-1.5) && !interval.contains(2.1));
    EXPECT_FALSE(interval.contains(NOT_A_NUMBER) || HbiIntervalData().contains(UNDEFINED));
    for (const HbiIntervalData& empty :
         {HbiIntervalData(1.0, 0.0), HbiIntervalData(NOT_A_NUMBER, 1.0),
          HbiIntervalData(0.0, UNDEFINED)})
        EXPECT_TRUE(empty.isEmpty() && !empty.intersects(interval) && interval.contains(empty));
    EXPECT_TRUE(interval.intersects(HbiIntervalData(2.0, 9.0)));
    EXPECT_FALSE(interval.intersects(HbiIntervalData(2.5, 9.0)));
    interval.unite(HbiIntervalData());
    interval.unite(HbiIntervalData(-9.0, 0.0));
    EXPECT_TRUE(interval == HbiIntervalData(-9.0, 2.0));
}
} // namespace
