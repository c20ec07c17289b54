// Published coordinates: those of IOGP and of the French geodetic agency, as the PROJ library ships
// them. How any other definition is converted is compared with PROJ itself, elsewhere.
#include <util/utils/KuuCoordSystemConverter.h>

#include "FileBytes.h"

#include <QtCore/QRegularExpression>

#include <cmath>

namespace
{
/// Also "-3d57'49.4".
QVector<double> numbers(const QString& text)
{
    const QRegularExpression number(R"((-?)([0-9.]+)(?:d(\d+)'([0-9.]*))?)");
    QVector<double> values;
    auto matches = number.globalMatch(text);
    while (matches.hasNext()) {
        const auto match = matches.next();
        const double value = match.captured(2).toDouble() + match.captured(3).toDouble() / 60. +
                             match.captured(4).toDouble() / 3600.;
        values.append(match.captured(1).isEmpty() ? value : -value);
    }
    return values;
}

double metres(const QString& text)
{
    return text.section(' ', 0, 0).toDouble() * (text.endsWith("mm") ? 1e-3 : 1.);
}

double distance(const HbgVector2D& a, const HbgVector2D& b, const KuuCoordSystem& system)
{
    constexpr double METRES_A_DEGREE = 111319.49;
    const HbgVector2D difference = a - b;
    if (!system.isGeographic())
        return difference.length();
    const double shrink = std::cos(a.y * std::acos(-1.) / 180.);
    return METRES_A_DEGREE * std::hypot(std::remainder(difference.x, 360.) * shrink, difference.y);
}

/// One pair of systems, and the points that are known in both.
class Pair
{
public:
    Pair(const KuuCoordSystem& from, const KuuCoordSystem& to)
        : m_from(from)
        , m_to(to)
        , m_name(from.serialize().toStdString() + " to " + to.serialize().toStdString())
    {
    }

    void expect(const QVector<double>& point, const QVector<double>& expected, double tolerance)
    {
        HbgVector2D image(point[0], point[1]);
        EXPECT_TRUE(m_forward.convert(image)) << m_name;
        EXPECT_LE(distance(image, {expected[0], expected[1]}, m_to), tolerance)
            << m_name << ' ' << point[0] << ' ' << point[1];
    }
    void expectRoundtrip(const QVector<double>& point, int count, double tolerance)
    {
        const HbgVector2D start(point[0], point[1]);
        HbgVector2D place = start;
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(m_forward.convert(place) && m_backward.convert(place)) << m_name;
        EXPECT_LE(distance(place, start, m_from), tolerance) << m_name;
    }

private:
    KuuCoordSystem m_from;
    KuuCoordSystem m_to;
    std::string m_name;
    KuuCoordSystemConverter m_forward{m_from, m_to};
    KuuCoordSystemConverter m_backward{m_to, m_from};
};

/// Nothing where one of them is no system that we convert, as one of the Earth's centre.
std::unique_ptr<Pair> pairOf(const KuuCoordSystem& from, const KuuCoordSystem& to)
{
    return from.isValid() && to.isValid() ? std::make_unique<Pair>(from, to) : nullptr;
}

KuuCoordSystem systemOf(QString step)
{
    step = step.remove('+').remove(QRegularExpression("\\binv\\b")).simplified();
    return step.startsWith("init=epsg:")
               ? KuuCoordSystem::createFromEpsg(step.mid(10))
               : KuuCoordSystem::createFromProj4(KueProj4Definition(step));
}

/// Checks a file of pipelines of two steps; answers how many points it holds.
int checkGigs(const QString& path)
{
    QString text = QString::fromUtf8(readBytes(path));
    text.remove(QRegularExpression("#[^\n]*")).replace(QRegularExpression("\\\\\\s*\n"), " ");
    std::unique_ptr<Pair> pair;
    QVector<double> point;
    double tolerance = 0.;
    int checked = 0;
    for (const QString& each : text.split('\n')) {
        const QString name = each.simplified().section(' ', 0, 0);
        const QString rest = each.simplified().section(' ', 1);
        if (name == "operation") {
            const QStringList steps = rest.split(QRegularExpression("\\+?\\bstep\\b"));
            pair = pairOf(systemOf(steps.value(1)), systemOf(steps.value(2)));
        } else if (name == "tolerance") {
            tolerance = metres(rest);
        } else if (name == "accept") {
            point = numbers(rest);
        } else if (pair && (name == "expect" || name == "roundtrip")) {
            ++checked;
            if (name == "expect")
                pair->expect(point, numbers(rest), tolerance);
            else
                pair->expectRoundtrip(point, rest.section(' ', 0, 0).toInt(),
                                      rest.contains(' ') ? metres(rest.section(' ', 1))
                                                         : tolerance);
        }
    }
    return checked;
}

/// Tests of the program cs2cs: "+init=IGNF:A +to +init=IGNF:B", input, output.
int checkIgnf(const QString& path)
{
    const QRegularExpression test(R"(- args: \+init=IGNF:(\w+) \+to \+init=IGNF:(\w+)[^\n]*\n)"
                                  R"( +in: ([^\n]*)\n +out: (?:\|\n *)?([^\n]*))");
    auto matches = test.globalMatch(QString::fromUtf8(readBytes(path)));
    int checked = 0;
    while (matches.hasNext()) {
        const auto match = matches.next();
        const auto pair = pairOf(KuuCoordSystem::createFromIgnf(match.captured(1)),
                                 KuuCoordSystem::createFromIgnf(match.captured(2)));
        if (!pair || match.captured(2) == "GEOPORTALFXX") // given by a later PROJ
            continue;
        const QString out = match.captured(4).remove('"').replace("\\t", " ");
        // Half of the last digit, and a bit.
        pair->expect(numbers(match.captured(3)), numbers(out), out.contains('d') ? 0.02 : 0.001);
        ++checked;
    }
    return checked;
}
} // namespace

TEST(KuuCoordSystemGie, agreesWithPublishedCoordinates)
{
    const QDir data(qEnvironmentVariable("KELVANE_TEST_DATA") + "/crs");
    if (!data.exists())
        GTEST_SKIP() << "no test data (KELVANE_TEST_DATA)";
    int checked = 0;
    for (const QFileInfo& file : QDir(data.filePath("gigs")).entryInfoList({"*.gie"}))
        checked += checkGigs(file.filePath());
    EXPECT_GT(checked, 300);
    EXPECT_GT(checkIgnf(data.filePath("cli/test_cs2cs_ignf.yaml")), 10);
}
