#include <basic/data/HbdColumnSummary.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal32.h>

#include <algorithm>
#include <cmath>

namespace
{
constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double UNDEFINED = HbbGlobal::D_FFFF;

template <class T>
HbdColumnSummary summaryOf(const std::vector<T>& values)
{
    return HbdColumnSummary::of(HbdSpan<const T>(values.data(), static_cast<int>(values.size())));
}

// Against sums in extended precision, for magnitudes, lengths and orders of all kinds.
TEST(HbdColumnSummaryTest, meansAreThoseOfTheExactSum)
{
    std::mt19937_64 engine(3);
    std::uniform_real_distribution<double> share(-1, 1);
    for (const int count : {1, 7, 8, 9, 1000, 100003}) {
        for (const double offset : {0.0, 1e9, -3e15}) {
            std::vector<double> values;
            long double sum = 0;
            int undefined = 0;
            for (int i = 0; i < count; ++i) {
                const bool isUndefined = i % 5 == 3;
                values.push_back(isUndefined ? (i % 2 ? UNDEFINED : std::nan(""))
                                             : offset + share(engine) * std::pow(10.0, i % 12));
                undefined += isUndefined ? 1 : 0;
                sum += isUndefined ? 0.0L : static_cast<long double>(values.back());
            }
            const HbdColumnSummary summary = summaryOf(values);
            const double mean = static_cast<double>(sum / (count - undefined));
            EXPECT_EQ(summary.undefined, undefined);
            EXPECT_EQ(summary.defined, count - undefined);
            EXPECT_NEAR(summary.mean, mean,
                        4e-16 * std::max(std::fabs(mean), std::fabs(offset)) + 1e-17 * 1e12);
            std::sort(values.begin(), values.end(),
                      [](double a, double b) { return (b != b ? INF : b) > (a != a ? INF : a); });
            EXPECT_NEAR(summaryOf(values).mean, summary.mean, 1e-15 * std::fabs(mean) + 1e-5);
        }
    }
}

TEST(HbdColumnSummaryTest, whatSumsCannotHold)
{
    struct Case {
        std::vector<double> values;
        double minimum, maximum, mean;
    };
    const std::vector<Case> cases = {
        {{1.7e308, 1.7e308, 1.7e308}, 1.7e308, 1.7e308, 1.7e308},
        {{1.7e308, -1.7e308, 3e307}, -1.7e308, 1.7e308, 1e307},
        {{1e16, 1, -1e16, 1}, -1e16, 1e16, 0.5},
        {{1, INF, 3}, 1, INF, INF},
        {{-INF, 2}, -INF, 2, -INF},
        {{-INF, INF, UNDEFINED}, -INF, INF, UNDEFINED},
        {{5e-324, 5e-324}, 5e-324, 5e-324, 5e-324},
    };
    for (const Case& c : cases) {
        const HbdColumnSummary summary = summaryOf(c.values);
        EXPECT_EQ(summary.minimum, QVariant(c.minimum));
        EXPECT_EQ(summary.maximum, QVariant(c.maximum));
        EXPECT_DOUBLE_EQ(summary.mean, c.mean);
    }
    for (const std::vector<double>& nothing : {std::vector<double>{}, {UNDEFINED, std::nan("")}}) {
        const HbdColumnSummary summary = summaryOf(nothing);
        EXPECT_EQ(summary.defined, 0);
        EXPECT_FALSE(summary.minimum.isValid());
        EXPECT_EQ(summary.mean, UNDEFINED);
    }
}

TEST(HbdColumnSummaryTest, integersAreExact)
{
    const qint64 large = std::numeric_limits<qint64>::max();
    const HbdColumnSummary summary =
        summaryOf<qint64>({large, large, -large, -large, HbbGlobal::I_FFFF, -7, 17});
    EXPECT_EQ(summary.minimum, QVariant(-large));
    EXPECT_EQ(summary.maximum, QVariant(large));
    EXPECT_EQ(summary.defined, 6);
    EXPECT_EQ(summary.undefined, 1);
    EXPECT_DOUBLE_EQ(summary.mean, 10.0 / 6);
    EXPECT_DOUBLE_EQ(summaryOf<qint64>(std::vector<qint64>(1000, large)).mean, double(large));
}

TEST(HbdColumnSummaryTest, columnsOfEveryKind)
{
    HbdVariableReal32 floats{HbdVariableDetails("f", HbdEVarType::REAL_32)};
    floats.setValues({1.5f, HbdVariableReal32::getUndefined(), 2.5f});
    EXPECT_EQ(HbdColumnSummary::of(floats).mean, 2.0);
    EXPECT_EQ(HbdColumnSummary::of(floats).undefined, 1);

    HbdVariableEnum rocks{HbdVariableDetails("r", HbdEVarType::CATEGORY)};
    rocks.setValues({0, 1, HbdEnumCatalog::UNDEFINED_CODE});
    const HbdColumnSummary summary = HbdColumnSummary::of(rocks);
    EXPECT_EQ(summary.defined, 2);
    EXPECT_EQ(summary.undefined, 1);
    EXPECT_FALSE(summary.maximum.isValid());
}
} // namespace
