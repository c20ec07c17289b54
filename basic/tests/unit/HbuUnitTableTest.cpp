// The built-in table against the program `units` (GNU units), which has a table of its own.
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>

namespace
{
using C = HbuEUnitClass;

/// What `units` says for each pair "from, to"; empty where the program is missing.
QVector<double> askUnits(const QStringList& pairs)
{
    QProcess process;
    process.start("units", {"--terse", "--strict", "--one-line", "--output-format", "%.17g"});
    process.write(pairs.join('\n').toUtf8() + '\n');
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.readAllStandardError(), "");
    QVector<double> factors;
    for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
        bool isNumber = false;
        const double factor = line.toDouble(&isNumber);
        if (isNumber)
            factors.append(factor);
        else
            EXPECT_EQ(line, "");
    }
    return factors;
}

/// How `units` writes a part of a key of ours; a part that is not here is written alike.
QString translated(const QString& part)
{
    // Their years are tropical, their rad is a dose of radiation. Of grades, ounces are troy
    // ounces, tons without a name short tons.
    static const QStringList names =
        QString("ft-us=surveyfoot;yd-us=3 surveyfoot;lk-us=surveylink;ch-us=surveychain;"
                "mi-us=5280 surveyfoot;ft2-us=surveyfoot^2;acre-us=USacre;"
                "mi2-us=(5280 surveyfoot)^2;a=are;gal-us=gallon;gal-uk=brgallon;bbl=barrel;"
                "Mbbl=1000 barrel;MMbbl=1e6 barrel;acre-ft=acre ft;ct=carat;gr=grain;"
                "ton-us=shortton;ton-uk=longton;klb=1000 lb;Mlb=1e6 lb;koz=1000 ozt;"
                "Moz=1e6 ozt;cpht=carat / 100 tonne;fraction=1;permil=1|1000;pu=%;D=darcy;"
                "mD=millidarcy;uD=microdarcy;h=hour;d=day;wk=week;yr=julianyear;"
                "kyr=1000 julianyear;Myr=1e6 julianyear;Gyr=1e9 julianyear;kn=knot;"
                "rad=radian;mrad=milliradian;m/h=m/hour;oz/t=ozt/shortton;lb/t=lb/shortton;"
                "oz/ton-uk=ozt/longton")
            .split(';');
    const QStringList found =
        names.filter(QRegularExpression('^' + QRegularExpression::escape(part) + '='));
    return found.isEmpty() ? part : found.first().section('=', 1);
}

QString expressionOf(const HbuUnit& unit)
{
    const QString whole = translated(unit.getKey());
    if (whole != unit.getKey())
        return whole;
    QStringList parts = whole.split('/');
    for (QString& part : parts)
        part = '(' + translated(part) + ')';
    return parts.join('/');
}

QVector<HbuUnit> linearUnits()
{
    QVector<HbuUnit> units;
    for (const C& unitClass : C::createIterator()) {
        for (const HbuUnit& unit : HbuUnitService::getInstance().getUnits(unitClass)) {
            if (!unit.isNone() && !unit.getTransfo().isAffine())
                units.append(unit);
        }
    }
    return units;
}

class HbuUnitTableTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable("units").isEmpty())
            GTEST_SKIP() << "the program 'units' is not installed (package units)";
    }
};

TEST_F(HbuUnitTableTest, agreesWithAnIndependentTable)
{
    const QVector<HbuUnit> units = linearUnits();
    QStringList pairs;
    for (const HbuUnit& unit : units) {
        const HbuUnit reference =
            HbuUnitService::getInstance().getReferenceUnit(unit.getUnitClass());
        pairs << expressionOf(unit) << expressionOf(reference);
    }
    const QVector<double> expected = askUnits(pairs);
    ASSERT_EQ(expected.size(), units.size());
    for (int i = 0; i < units.size(); ++i) {
        const double factor = units.at(i).getTransfo().getFactor();
        EXPECT_NEAR(factor / expected.at(i), 1., 1e-12)
            << units.at(i).getUnitClass().getKey().toStdString() << ' '
            << pairs.at(2 * i).toStdString();
    }
}

TEST(HbuUnitTable, namesASourceForEachUnit)
{
    for (const HbuUnit& unit : linearUnits())
        EXPECT_FALSE(unit.getSource().isEmpty()) << unit.getKey().toStdString();
    // The darcy is defined by a quotient and published in seven digits.
    const HbuUnit darcy = HbuUnitService::getInstance().getUnit(C::PERMEABILITY, "D");
    EXPECT_EQ(QString::number(darcy.getTransfo().getFactor(), 'g', 7), "9.869233e-13");
}
} // namespace
