#include "DecimalDifferential.h"

#include <basic/base/HbbGlobal.h>

#include <limits>

namespace
{
QByteArray format(double value, const HbbEFormat& kind, int precision)
{
    return HbbStringFormat::simpleValueToByteArray(value, kind, precision);
}
} // namespace

TEST(HbbStringFormat, decimalEqualsToChars)
{
    EXPECT_EQ(firstDecimalDifference(1, 400000), "");
}

TEST(HbbStringFormat, eachFormatWritesItsOwn)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double value;
        HbbEFormat format;
        int precision;
        const char* text;
    } rows[] = {
        {0.1, HbbEFormat::DECIMAL, 25, "0.1000000000000000055511151"},
        {1.5, HbbEFormat::DECIMAL, -3, "2"},
        {1234.5678, HbbEFormat::SCIENTIFIC, 2, "1.23e+03"},
        {1234.5678, HbbEFormat::GENERAL, 6, "1234.57"},
        {0.00001, HbbEFormat::GENERAL, 3, "1e-05"},
        {-7.5, HbbEFormat::INTEGER, 4, "-8"},
        {0.1 + 0.2, HbbEFormat::SHORTEST, 2, "0.30000000000000004"},
        {1e22, HbbEFormat::SHORTEST, 0, "1e+22"},
        {infinity, HbbEFormat::DECIMAL, 2, "inf"},
        {-infinity, HbbEFormat::SCIENTIFIC, 2, "-inf"},
        {-nan, HbbEFormat::GENERAL, 2, "nan"},
        {HbbGlobal::D_FFFF, HbbEFormat::SHORTEST, 0, "1e+300"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(format(row.value, row.format, row.precision), row.text);
}

TEST(HbbStringFormat, theLongestTextsFitIntoTheCapacity)
{
    const double lowest = std::numeric_limits<double>::lowest();
    for (const int precision : {0, 6, HbbStringFormat::MAX_PRECISION}) {
        const QByteArray text = format(lowest, HbbEFormat::DECIMAL, precision);
        EXPECT_LE(text.size(), HbbStringFormat::getCapacity(precision));
        EXPECT_EQ(text.toDouble(), lowest);
    }
    EXPECT_EQ(format(lowest, HbbEFormat::DECIMAL, 1000),
              format(lowest, HbbEFormat::DECIMAL, HbbStringFormat::MAX_PRECISION));
    const double longDigits = -std::numeric_limits<double>::denorm_min();
    for (const HbbEFormat& kind : HbbEFormat::createIterator())
        EXPECT_LE(format(longDigits, kind, 100).size(), HbbStringFormat::CAPACITY);
}

TEST(HbbStringFormat, integersOfEveryLengthReadBack)
{
    for (const qint64 start : {qint64(1), qint64(2), qint64(7), qint64(9)}) {
        for (qint64 value = start; value > 0 && value < std::numeric_limits<qint64>::max() / 10;
             value = value * 10 + 9) {
            for (const qint64 signedValue : {value, -value, value - 1, value + 1})
                EXPECT_EQ(HbbStringFormat::simpleValueToByteArray(signedValue),
                          QByteArray::number(signedValue));
        }
    }
    for (const qint64 limit :
         {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(), qint64(0)})
        EXPECT_EQ(HbbStringFormat::simpleValueToByteArray(limit), QByteArray::number(limit));
}
