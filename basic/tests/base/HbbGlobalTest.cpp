#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>

#include <QtCore/QLocale>

#include <clocale>
#include <cmath>

TEST(HbbGlobal, undefinedIsTheUndefinedRealAndNaN)
{
    const double nan = std::nan("");
    EXPECT_TRUE(HbbGlobal::isUndefined(HbbGlobal::D_FFFF));
    EXPECT_TRUE(HbbGlobal::isUndefined(nan));
    for (const double value : {0.0, -HbbGlobal::D_FFFF, HUGE_VAL, 1e299, 1e301})
        EXPECT_FALSE(HbbGlobal::isUndefined(value)) << value;
    EXPECT_EQ(HbbGlobal::normalized(nan), HbbGlobal::D_FFFF);
    EXPECT_EQ(HbbGlobal::normalized(-2.5), -2.5);
    EXPECT_EQ(HbbGlobal::normalized(HUGE_VAL), HUGE_VAL);
}

TEST(HbbGlobal, theUndefinedRealSurvivesEveryTextForm)
{
    for (const HbbEFormat& format :
         {HbbEFormat::DECIMAL, HbbEFormat::SCIENTIFIC, HbbEFormat::GENERAL, HbbEFormat::SHORTEST}) {
        const QByteArray text =
            HbbStringFormat::simpleValueToByteArray(HbbGlobal::D_FFFF, format, 3);
        EXPECT_EQ(HbbGlobal::convertString(QString::fromLatin1(text), 0.0), HbbGlobal::D_FFFF);
    }
}

TEST(HbbGlobal, wholeTextsConvertAndOthersGiveTheDefault)
{
    const struct {
        const char* text;
        double real;
        qint32 integer;
    } rows[] = {
        {"12", 12, 12},    {" -7\t", -7, -7},
        {"3.5", 3.5, 99},  {"1e3", 1000, 99},
        {"3,5", 99, 99},   {"1,000", 99, 99},
        {"12 m", 99, 99},  {"", 99, 99},
        {"1e999", 99, 99}, {"2147483648", 2147483648.0, 99},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(HbbGlobal::convertString(QString(row.text), 99.0), row.real) << row.text;
        EXPECT_EQ(HbbGlobal::convertString(QString(row.text), qint32(99)), row.integer) << row.text;
    }
    EXPECT_EQ(HbbGlobal::convertString(QString("32768"), qint16(-1)), -1);
    EXPECT_EQ(HbbGlobal::convertString(QString("-9223372036854775808"), qint64(0)),
              HbbGlobal::I_FFFF);
    EXPECT_EQ(HbbGlobal::convertString(QString("18446744073709551615"), quint64(0)),
              std::numeric_limits<quint64>::max());
    EXPECT_EQ(HbbGlobal::convertString(QString("-1"), quint64(5)), 5u);
}

TEST(HbbGlobal, noLocaleChangesANumber)
{
    const std::string former = std::setlocale(LC_ALL, nullptr);
    const QLocale formerLocale;
    QLocale::setDefault(QLocale(QLocale::German));
    // Where the system has no such locale, Qt's own default still is the foreign one.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ(HbbGlobal::convertString(QString("1.5"), 0.0), 1.5);
    EXPECT_EQ(HbbGlobal::convertString(QString("1,5"), 0.0), 0.0);
    EXPECT_EQ(HbbGlobal::convertString(QString("1.000"), qint32(-1)), -1);
    for (const HbbEFormat& format : HbbEFormat::createIterator())
        EXPECT_FALSE(HbbStringFormat::simpleValueToByteArray(1234.5, format, 2).contains(','));
    std::setlocale(LC_ALL, former.c_str());
    QLocale::setDefault(formerLocale);
}
