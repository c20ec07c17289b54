#include <basic/base/HbbGlobal.h>
#include <basic/unit/HbuUnitService.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>

namespace
{
HbuUnitService& service()
{
    return HbuUnitService::getInstance();
}

double convert(const HbuEUnitClass& unitClass, const char* from, const char* to, double value)
{
    const HbuUnit fromUnit = service().getUnit(unitClass, QString::fromUtf8(from));
    const HbuUnit toUnit = service().getUnit(unitClass, QString::fromUtf8(to));
    return service().getConversion(fromUnit, toUnit).apply(value);
}
} // namespace

TEST(HbuUnitService, holdsAWellFormedTable)
{
    for (const HbuEUnitClass& unitClass : HbuEUnitClass::createIterator()) {
        SCOPED_TRACE(unitClass.getKey().toStdString());
        std::set<QString> keys, names;
        for (const HbuUnit& unit : service().getUnits(unitClass)) {
            SCOPED_TRACE(unit.getKey().toStdString());
            EXPECT_TRUE(unit.isValid());
            EXPECT_EQ(unit.getUnitClass(), unitClass);
            EXPECT_TRUE(keys.insert(unit.getKey()).second);
            EXPECT_TRUE(names.insert(unit.getName()).second);
            EXPECT_TRUE(service().acceptsAffine(unitClass) || !unit.getTransfo().isAffine());
            EXPECT_EQ(service().getUnit(unitClass, unit.getKey()), unit);
            EXPECT_TRUE(service().getConversion(unit, unit).isIdentity());
        }
        EXPECT_TRUE(service().getReferenceUnit(unitClass).getTransfo().isIdentity());
        EXPECT_TRUE(service().getStorageUnit(unitClass).isValid());
    }
}

TEST(HbuUnitService, convertsByThePublishedFactors)
{
    const struct {
        HbuEUnitClass unitClass;
        const char* from;
        const char* to;
        double value;
        double expected;
        bool isExact;
    } rows[] = {
        {HbuEUnitClass::LENGTH, "ft", "m", 1, 0.3048, true},
        {HbuEUnitClass::LENGTH, "ft-us", "m", 3937, 1200, true},
        {HbuEUnitClass::LENGTH, "mm", "cm", 3, 0.3, true},
        {HbuEUnitClass::MASS, "ozt", "kg", 1, 0.0311034768, true},
        {HbuEUnitClass::DENSITY, "lb/ft3", "kg/m3", 1, 16.018463373960138, true},
        {HbuEUnitClass::CONCENTRATION, "oz/t", "g/t", 1, 34.285714285714285, true},
        {HbuEUnitClass::PERMEABILITY, "D", "m2", 1, 9.869233e-13, false},
        {HbuEUnitClass::PRESSURE, "psi", "Pa", 1, 6894.757293168362, true},
        {HbuEUnitClass::TEMPERATURE, "degC", "K", 20, 293.15, true},
        {HbuEUnitClass::TEMPERATURE, "degC", "degF", 100, 212, true},
        {HbuEUnitClass::TEMPERATURE, "degF", "degC", -40, -40, true},
        {HbuEUnitClass::ANGLE, "deg", "gon", 90, 100, true},
        {HbuEUnitClass::ANGLE, "deg", "rad", 180, 3.14159265358979323846, true},
        {HbuEUnitClass::LATITUDE, "gon", "deg", 50, 45, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.from) + " -> " + row.to);
        const double converted = convert(row.unitClass, row.from, row.to, row.value);
        if (row.isExact) // to the last bit
            EXPECT_EQ(converted, row.expected);
        else
            EXPECT_NEAR(converted / row.expected, 1., 1e-7);
    }
}

// Whatever way a conversion is worked out (by a multiplication, a division, a reciprocal, with a
// shift), a column of any length comes out as exact arithmetic says, and its undefined values as
// they were.
TEST(HbuUnitService, convertsColumnsExactly)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> number(-1e4, 1e4);
    for (const HbuEUnitClass& unitClass : HbuEUnitClass::createIterator()) {
        const QVector<HbuUnit> units = service().getUnits(unitClass);
        for (int i = 0; i < units.size(); ++i) {
            const HbuUnit& from = units.at(i);
            const HbuUnit& to = units.at((7 * i + 3) % units.size());
            std::vector<double> values(std::size_t(i % 200), 0.);
            std::generate(values.begin(), values.end(), [&] { return number(random); });
            values.insert(values.end(),
                          {HbbGlobal::D_FFFF, std::nan(""), -0., 1e-250, INFINITY, -INFINITY, 1.});
            const std::vector<double> before = values;
            const HbuUnitTransfo conversion = service().getConversion(from, to);
            conversion.apply(values.data(), qint64(values.size()));

            using Exact = long double;
            const Exact scale = Exact(from.getTransfo().getFactor()) / to.getTransfo().getFactor();
            const Exact shifts[] = {
                Exact(from.getTransfo().getShift()) / to.getTransfo().getFactor(),
                -Exact(to.getTransfo().getShift()) / to.getTransfo().getFactor()};
            for (std::size_t j = 0; j < values.size(); ++j) {
                if (HbbGlobal::isUndefined(before[j])) {
                    EXPECT_TRUE(HbbGlobal::isUndefined(values[j]));
                    EXPECT_EQ(std::isnan(values[j]), std::isnan(before[j]));
                    continue;
                }
                const Exact scaled = before[j] * scale;
                const Exact size = std::abs(scaled) + std::abs(shifts[0]) + std::abs(shifts[1]);
                if (std::isfinite(before[j])) {
                    ASSERT_NEAR(double(values[j] - (scaled + shifts[0] + shifts[1])), 0.,
                                double(size) * 5e-16)
                        << from.getKey().toStdString() << " -> " << to.getKey().toStdString();
                }
                // Alone or in a column, to the last bit (of a zero, too).
                const double alone = conversion.apply(before[j]);
                ASSERT_EQ(std::memcmp(&values[j], &alone, sizeof alone), 0) << before[j];
            }
        }
    }
}

TEST(HbuUnitService, convertsWithinAClassOnly)
{
    const HbuUnit metre = service().getReferenceUnit(HbuEUnitClass::LENGTH);
    const HbuUnit second = service().getReferenceUnit(HbuEUnitClass::TIME);
    EXPECT_FALSE(service().getConversion(metre, second).isValid());
    EXPECT_FALSE(service().getConversion(metre, HbuUnit()).isValid());
    EXPECT_FALSE(service().getConversion(HbuUnit(), HbuUnit()).isValid());
    EXPECT_TRUE(service().getConversion(HbuUnit::none(), HbuUnit::none()).isIdentity());
    EXPECT_FALSE(service().getConversionToStorageUnit(HbuUnit()).isValid());
    EXPECT_EQ(service().getUnitFromSymbol(HbuEUnitClass::AREA, "m²").getKey(), "m2");
    EXPECT_EQ(service().getUnitFromFactor(HbuEUnitClass::LENGTH, 0.304800609601219).getKey(),
              "ft-us");
}

TEST(HbuUnitService, keepsTheUsersUnitsApart)
{
    const QString key = service().getUniqueKey("m");
    EXPECT_EQ(key, "m_2");
    const auto unit = [&key](const HbuEUnitClass& unitClass, const HbuUnitTransfo& transfo) {
        return HbuUnit(key, "Step", "st", unitClass, HbuEUnitSystem::OTHER, transfo);
    };
    const HbuUnit step = unit(HbuEUnitClass::LENGTH, HbuUnitTransfo::linear(0.75));
    EXPECT_FALSE(service().updateUnit(step));
    EXPECT_EQ(service().addUnit(step), step);
    EXPECT_EQ(service().getUserUnits(), QVector<HbuUnit>{step});
    EXPECT_EQ(service().getUnit(HbuEUnitClass::LENGTH, key), step);

    const HbuUnit refused[] = {
        step, // its key is taken
        unit(HbuEUnitClass::AREA, HbuUnitTransfo::linear(0.)),
        unit(HbuEUnitClass::AREA, HbuUnitTransfo::linear(std::nan(""))),
        unit(HbuEUnitClass::AREA, HbuUnitTransfo::affine(1., 2.)),
        unit(HbuEUnitClass::NONE, HbuUnitTransfo()),
        service().getReferenceUnit(HbuEUnitClass::AREA),
    };
    for (const HbuUnit& each : refused)
        EXPECT_FALSE(service().addUnit(each).getTransfo().isValid());
    EXPECT_FALSE(service().updateUnit(refused[1]));
    EXPECT_EQ(service().getUserUnits(), QVector<HbuUnit>{step});

    EXPECT_TRUE(
        service().updateUnit(unit(HbuEUnitClass::TEMPERATURE, HbuUnitTransfo::affine(1., 2.))));
    EXPECT_FALSE(service().getUnit(HbuEUnitClass::LENGTH, key).isValid());
    EXPECT_FALSE(service().removeUnit("m"));
    EXPECT_TRUE(service().removeUnit(key));
    EXPECT_TRUE(service().getUserUnits().isEmpty());
}

TEST(HbuUnitTransfo, invertsAndComposes)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(-50., 50.);
    for (int i = 0; i < 1000; ++i) {
        const HbuUnitTransfo a = HbuUnitTransfo::affineRatio(number(random), number(random), 7.);
        const HbuUnitTransfo b = HbuUnitTransfo::affine(number(random), number(random));
        const double x = number(random);
        EXPECT_TRUE(a.followedBy(a.inverted()).isIdentity());
        EXPECT_NEAR(a.followedBy(b).apply(x), b.apply(a.apply(x)), 1e-9);
        EXPECT_NEAR(b.inverted().apply(b.apply(x)), x, 1e-8 / std::abs(b.getFactor()));
    }
    EXPECT_EQ(HbuUnitTransfo::invalid().apply(3.), 3.);
    EXPECT_FALSE(HbuUnitTransfo::linear(2.).followedBy(HbuUnitTransfo::linear(0.)).isValid());
    EXPECT_FALSE(HbuUnitTransfo::affine(1., HbbGlobal::D_FFFF).isValid());
}
