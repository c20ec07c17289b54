// Makes up a drill campaign and exports it: inclined holes on a loose grid, a sample every five
// metres, three grades that follow an ore body, a rock type, gaps. The same table on every run.
//
//     drill_campaign [FILE.csv]
#include <util/calc/KucDataSets.h>
#include <util/calc/KucExportData.h>
#include <util/calc/KucExportDataEncodingCsv.h>
#include <util/dataset/KudMemoryDatasetPoint.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>
#include <basic/error/HbeError.h>

#include <QtCore/QCoreApplication>

#include <cmath>
#include <cstdio>
#include <random>

namespace
{
constexpr double PI = 3.14159265358979323846;
constexpr int HOLES_EAST = 9;
constexpr int HOLES_NORTH = 8;
constexpr double SPACING = 60.0;
constexpr double SAMPLE_LENGTH = 5.0;
constexpr double ORIGIN_EAST = 652400.0;
constexpr double ORIGIN_NORTH = 6862150.0;
constexpr double OVERBURDEN = 14.0; // metres, along the hole

/// The distributions of the standard library differ between systems; this one does not.
class Dice
{
public:
    double uniform() { return static_cast<double>(m_engine() >> 11) * 0x1p-53; }
    double between(double low, double high) { return low + (high - low) * uniform(); }
    double normal()
    {
        const double radius = std::sqrt(-2.0 * std::log(1.0 - uniform()));
        return radius * std::cos(2.0 * PI * uniform());
    }

private:
    std::mt19937_64 m_engine{20260115};
};

struct Point {
    double x, y, z; // from the middle of the area, z upwards
};

/// A smooth random field: waves of random directions, about 80 metres long.
class Field
{
public:
    explicit Field(Dice& dice)
    {
        for (Wave& wave : m_waves)
            wave = {dice.normal() / 80, dice.normal() / 80, dice.normal() / 50,
                    dice.between(0, 2 * PI)};
    }
    double at(const Point& p) const
    {
        double sum = 0;
        for (const Wave& wave : m_waves)
            sum +=
                std::cos(2 * PI * 0.25 * (wave.x * p.x + wave.y * p.y + wave.z * p.z) + wave.phase);
        return sum * std::sqrt(2.0 / COUNT);
    }

private:
    struct Wave {
        double x, y, z, phase;
    };
    static constexpr int COUNT = 60;
    Wave m_waves[COUNT];
};

/// How near the ore body a point is: 1 on its plane, which strikes north-east and dips, 0 far away.
double oreShare(const Point& p)
{
    const double across = (p.x - p.y) * 0.7071 + 0.55 * p.z + 45;
    const double along = (p.x + p.y) * 0.7071;
    return std::exp(-across * across / (2 * 70.0 * 70.0) - along * along / (2 * 190.0 * 190.0));
}

struct Campaign {
    std::vector<QString> hole, laboratory;
    std::vector<double> from, east, north, elevation, copper, gold;
    std::vector<qint64> arsenic;
    std::vector<QString> rock;
};

QString rockAt(const Point& p, double depth, double ore, double noise)
{
    if (depth < OVERBURDEN)
        return "overburden";
    if (ore > 0.55 + 0.1 * noise)
        return "breccia";
    if (std::fabs(p.x + 0.3 * p.y - 120) < 9)
        return "dolerite";
    return p.z + 0.4 * p.y + 15 * noise > -70 ? "schist" : "granite";
}

void addSample(Campaign& campaign, Dice& dice, const Field& field, const Field& other,
               const Point& p, double depth)
{
    const double ore = oreShare(p);
    const double trend = 2.6 * ore + 0.45 * field.at(p);
    const bool barren = depth < OVERBURDEN;
    const auto gap = [&dice](double share) { return dice.uniform() < share; };

    campaign.rock.push_back(rockAt(p, depth, ore, other.at(p)));
    if (gap(0.01))
        campaign.rock.back() = QString();
    const double copper = std::exp(-2.6 + trend + 0.25 * dice.normal()) * (barren ? 0.2 : 1.0);
    const double gold = std::exp(-3.2 + 1.1 * trend + 0.5 * other.at(p) + 0.4 * dice.normal());
    const double arsenic = std::exp(2.4 + 0.8 * trend + 0.5 * dice.normal());
    campaign.copper.push_back(gap(0.02) ? HbbGlobal::D_FFFF : copper);
    campaign.gold.push_back(barren || gap(0.03) ? HbbGlobal::D_FFFF : gold); // not asked for there
    campaign.arsenic.push_back(gap(0.08) ? HbbGlobal::I_FFFF : qint64(arsenic + 0.5));
}

Campaign drill()
{
    Dice dice;
    const Field field(dice);
    const Field other(dice);
    Campaign campaign;
    for (int i = 0; i < HOLES_EAST * HOLES_NORTH; ++i) {
        if (dice.uniform() < 0.08)
            continue; // a place that the rig could not reach
        const Point collar = {(i % HOLES_EAST - 4) * SPACING + dice.between(-12, 12),
                              (i / HOLES_EAST - 3.5) * SPACING + dice.between(-12, 12),
                              4 * dice.normal()};
        const double dip = dice.between(58, 75) * PI / 180;
        const double azimuth = dice.between(305, 325) * PI / 180;
        const double length = dice.between(170, 320);
        for (double depth = 0; depth + SAMPLE_LENGTH <= length; depth += SAMPLE_LENGTH) {
            const double middle = depth + SAMPLE_LENGTH / 2;
            const Point p = {collar.x + middle * std::cos(dip) * std::sin(azimuth),
                             collar.y + middle * std::cos(dip) * std::cos(azimuth),
                             collar.z - middle * std::sin(dip)};
            campaign.hole.push_back(QString("DDH-%1").arg(i + 1, 3, 10, QChar('0')));
            campaign.laboratory.push_back(
                QString("%1").arg(campaign.laboratory.size() + 1, 6, 10, QChar('0')));
            campaign.from.push_back(depth);
            campaign.east.push_back(ORIGIN_EAST + p.x);
            campaign.north.push_back(ORIGIN_NORTH + p.y);
            campaign.elevation.push_back(412 + p.z);
            addSample(campaign, dice, field, other, p, depth);
        }
    }
    return campaign;
}

template <class Column, class Values>
void addColumn(HbdDataTable& table, HbdVariableDetails details, int decimals, Values values)
{
    details.format = HbbEFormat::DECIMAL;
    details.precision = decimals;
    auto column = std::make_unique<Column>(details);
    column->setValues(std::move(values));
    table.addVariable(std::move(column));
}

HbdDataTable toTable(Campaign campaign)
{
    using Real = HbdVariableReal;
    const auto details = [](const char* name) { return HbdVariableDetails(name); };
    HbdDataTable table;
    addColumn<HbdVariableText>(table, details("HOLE"), 0, std::move(campaign.hole));
    addColumn<HbdVariableText>(table, details("SAMPLE"), 0, std::move(campaign.laboratory));
    addColumn<Real>(table, details("FROM"), 1, std::move(campaign.from));
    addColumn<Real>(table, details("EASTING"), 2, std::move(campaign.east));
    addColumn<Real>(table, details("NORTHING"), 2, std::move(campaign.north));
    addColumn<Real>(table, details("ELEVATION"), 2, std::move(campaign.elevation));
    addColumn<HbdVariableText>(table, details("ROCK"), 0, std::move(campaign.rock));
    addColumn<Real>(table, details("CU_PCT"), 3, std::move(campaign.copper));
    addColumn<Real>(table, details("AU_GPT"), 3, std::move(campaign.gold));
    addColumn<HbdVariableInteger>(table, details("AS_PPM"), 0, std::move(campaign.arsenic));
    return table;
}
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QString path = application.arguments().value(1, "drill_campaign.csv");
    try {
        KudMemoryDatasetPoint dataset("drill campaign");
        dataset.setDataTable(toTable(drill()));
        KucExportData job;
        job.setDataset(Kuc::createPoints(dataset, Kuc::getExportedVariables(dataset)));
        job.setEncodingStrategy(new KucExportDataEncodingCsv( // the job owns it
            path, KueCsvSeparator::COMMA, KueDecimalSeparator::DOT));
        if (!job.runInCurrentThread())
            job.rethrowError();
        std::printf("%s: %d samples\n", qPrintable(path), dataset.getObjectCount());
        return 0;
    } catch (const HbeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
