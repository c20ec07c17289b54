// Published coordinates: the test files of the PROJ library and of geodetic agencies, as far as
// what they ask can be said as a conversion from one coordinate system to another.
#include <util/utils/KuuCoordSystemConverter.h>

#include <QtCore/QRegularExpression>

#include <cmath>
#include <iostream>
#include <proj.h>

namespace
{
constexpr double METRES_A_DEGREE = 111319.49;

/// The authority's first axis runs to the north: its files give northings and latitudes first.
bool beginsWithNorth(const QString& code)
{
    PJ* crs = proj_create(nullptr, code.toUtf8().constData());
    PJ* axes = proj_crs_get_coordinate_system(nullptr, crs);
    const char* direction = nullptr;
    const bool isKnown =
        axes && proj_cs_get_axis_info(nullptr, axes, 0, nullptr, nullptr, &direction, nullptr,
                                      nullptr, nullptr, nullptr);
    const bool result = isKnown && QByteArray(direction) == "north";
    proj_destroy(axes);
    proj_destroy(crs);
    return result;
}

struct Side {
    KuuCoordSystem system;
    bool swaps = false;
};

/// The words of a definition without their plus signs.
QStringList words(QString text)
{
    text.replace(';', ' ');
    text.replace(QRegularExpression("\\s*=\\s*"), "=");
    QStringList list = text.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts);
    list.replaceInStrings(QRegularExpression("^\\+"), QString());
    return list;
}

/// What a step of a pipeline converts to, if that can be a coordinate system alone.
Side sideOf(const QStringList& step)
{
    static const QStringList plain = {
        "proj",    "zone",  "south", "ellps", "datum",  "a",     "b",       "rf",     "f",
        "es",      "e",     "R",     "R_A",   "R_V",    "R_a",   "R_g",     "R_h",    "R_lat_a",
        "R_lat_g", "lat_0", "lat_1", "lat_2", "lat_ts", "lon_0", "lonc",    "alpha",  "gamma",
        "k",       "k_0",   "x_0",   "y_0",   "units",  "pm",    "towgs84", "no_def", "no_defs"};
    for (const QString& word : step) {
        if (word.startsWith("init=epsg:"))
            return {KuuCoordSystem::createFromEpsg(word.mid(10))};
        if (!plain.contains(word.section('=', 0, 0)))
            return {};
    }
    // A system takes its flattening from the ellipsoid's name, an operation from the parameter.
    if (!step.filter("ellps=").isEmpty() && !step.filter(QRegularExpression("^f=")).isEmpty())
        return {};
    return {KuuCoordSystem::createFromProj4(KueProj4Definition('+' + step.join(" +")))};
}

/// The longitudes and latitudes that a projection starts from.
QStringList baseOf(const QStringList& step)
{
    if (!step.filter("towgs84=").isEmpty())
        return {"proj=longlat", "datum=WGS84"};
    static const QStringList shape = {"ellps", "datum", "a",       "b",       "rf",  "f",
                                      "es",    "e",     "R",       "R_A",     "R_V", "R_a",
                                      "R_g",   "R_h",   "R_lat_a", "R_lat_g", "pm"};
    QStringList base{"proj=longlat"};
    for (const QString& word : step) {
        if (shape.contains(word.section('=', 0, 0)))
            base += word;
    }
    return base;
}

/// Counts pairs, and those that were left out by reason.
class Checker
{
public:
    void readGie(const QString& path)
    {
        m_name = QFileInfo(path).fileName();
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QString pending;
        while (!file.atEnd()) {
            pending += QString::fromUtf8(file.readLine()).section('#', 0, 0).trimmed();
            if (pending.endsWith('\\')) {
                pending.chop(1);
                pending += ' ';
                continue;
            }
            const QString line = pending.simplified();
            pending.clear();
            command(line.section(' ', 0, 0), line.section(' ', 1));
        }
    }

    /// A test of the program cs2cs: "+init=IGNF:A +to +init=IGNF:B", input, output.
    void readYaml(const QString& path)
    {
        m_name = QFileInfo(path).fileName();
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QRegularExpression test(R"(- args: \+init=IGNF:(\w+) \+to \+init=IGNF:(\w+)[^\n]*\n)"
                                      R"( +in: ([^\n]*)\n +out: (?:\|\n *)?([^\n]*))");
        auto matches = test.globalMatch(QString::fromUtf8(file.readAll()));
        while (matches.hasNext()) {
            const auto match = matches.next();
            begin({KuuCoordSystem::createFromIgnf(match.captured(1))},
                  {KuuCoordSystem::createFromIgnf(match.captured(2))});
            if (match.captured(2) == "GEOPORTALFXX")
                skipAll("given by a later PROJ");
            const bool printsAngles = match.captured(4).contains('d');
            m_tolerance = printsAngles ? 0.02 : 0.001; // half of the last digit, and a bit
            m_accept = numbers(match.captured(3));
            expect(numbers(match.captured(4).remove('"').replace("\\t", " ")));
        }
    }

    int checked = 0;
    QMap<QString, int> skipped;

private:
    void command(const QString& name, const QString& rest)
    {
        if (name == "operation")
            readOperation(rest);
        else if (name == "crs_src")
            m_source = rest;
        else if (name == "crs_dst")
            begin({KuuCoordSystem::fromUserText(m_source), beginsWithNorth(m_source)},
                  {KuuCoordSystem::unserialize(rest), beginsWithNorth(rest)});
        else if (name == "tolerance")
            m_tolerance = metres(rest);
        else if (name == "direction")
            m_isInverse = rest == "inverse";
        else if (name == "accept")
            m_accept = numbers(rest);
        else if (name == "expect" && !m_accept.isEmpty())
            rest.startsWith("failure") ? expectFailure() : expect(numbers(rest));
        else if (name == "roundtrip" && !m_accept.isEmpty())
            roundtrip(rest);
    }

    void readOperation(const QString& text)
    {
        QStringList list = words(text);
        QVector<QStringList> steps;
        if (list.value(0) == "proj=pipeline") {
            for (const QString& word : list.mid(1)) {
                if (word == "step")
                    steps.append(QStringList());
                else if (!steps.isEmpty())
                    steps.last() += word;
            }
        } else {
            steps = {baseOf(list) << "inv", list};
        }
        const bool isPair = steps.size() == 2 && steps[0].removeAll("inv") == 1;
        if (isPair)
            begin(sideOf(steps[0]), sideOf(steps[1]));
        else
            skipAll("not from one system to another");
    }

    void begin(const Side& from, const Side& to)
    {
        m_from = from;
        m_to = to;
        m_tolerance = 0.0005;
        m_isInverse = false;
        m_accept.clear();
        m_forward.reset();
        m_backward.reset();
        if (!from.system.isValid() || !to.system.isValid()) {
            m_reason = "geocentric or no system";
            return;
        }
        m_forward = std::make_unique<KuuCoordSystemConverter>(from.system, to.system);
        m_backward = std::make_unique<KuuCoordSystemConverter>(to.system, from.system);
        m_reason = "moves with time";
    }

    void skipAll(const QString& reason)
    {
        begin({}, {});
        m_reason = reason;
    }

    bool isUsable(int values)
    {
        if (m_forward && m_accept.size() >= 2 && m_accept.size() < 4 && values < 4)
            return true;
        ++skipped[m_reason];
        return false;
    }

    static double metres(const QString& text)
    {
        static const QMap<QString, double> factors = {
            {"m", 1.}, {"cm", 1e-2}, {"mm", 1e-3}, {"um", 1e-6}, {"nm", 1e-9}};
        return text.section(' ', 0, 0).toDouble() * factors.value(text.section(' ', 1, 1), 1.);
    }

    /// Also "-3d57'49.4".
    static QVector<double> numbers(const QString& text)
    {
        static const QRegularExpression number(
            R"((-?)([0-9.eE+]+(?:e-\d+)?)(?:d(\d+)'([0-9.]*))?)");
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

    static HbgVector2D point(const QVector<double>& values, bool swaps)
    {
        return swaps ? HbgVector2D(values[1], values[0]) : HbgVector2D(values[0], values[1]);
    }

    static double distance(const HbgVector2D& a, const HbgVector2D& b, const Side& side)
    {
        const HbgVector2D difference = a - b;
        if (!side.system.isGeographic())
            return difference.length();
        const double shrink = std::cos(a.y * std::acos(-1.) / 180.);
        return METRES_A_DEGREE *
               std::hypot(std::remainder(difference.x, 360.) * shrink, difference.y);
    }

    void expect(const QVector<double>& values)
    {
        if (!isUsable(values.size()) || values.size() < 2)
            return;
        const Side& from = m_isInverse ? m_to : m_from;
        const Side& to = m_isInverse ? m_from : m_to;
        HbgVector2D image = point(m_accept, from.swaps);
        EXPECT_TRUE((m_isInverse ? m_backward : m_forward)->convert(image)) << where();
        const HbgVector2D expected = point(values, to.swaps);
        EXPECT_LE(distance(image, expected, to), m_tolerance)
            << where() << " to " << image.x << ' ' << image.y << " instead of " << expected.x << ' '
            << expected.y;
        ++checked;
    }

    void expectFailure()
    {
        if (!isUsable(0))
            return;
        HbgVector2D image = point(m_accept, m_from.swaps);
        EXPECT_FALSE((m_isInverse ? m_backward : m_forward)->convert(image)) << where();
        ++checked;
    }

    /// "COUNT [TOLERANCE]": there and back so many times.
    void roundtrip(const QString& rest)
    {
        if (!isUsable(0))
            return;
        const HbgVector2D start = point(m_accept, m_from.swaps);
        const double tolerance = rest.contains(' ') ? metres(rest.section(' ', 1)) : m_tolerance;
        HbgVector2D place = start;
        for (int i = rest.section(' ', 0, 0).toInt(); i > 0; --i) {
            if (!m_forward->convert(place) || !m_backward->convert(place)) {
                ADD_FAILURE() << where();
                return;
            }
        }
        EXPECT_LE(distance(place, start, m_from), tolerance) << where();
        ++checked;
    }

    std::string where() const
    {
        return QString("%1: %2 to %3, %4 %5")
            .arg(m_name, m_from.system.serialize(), m_to.system.serialize())
            .arg(m_accept[0], 0, 'g', 12)
            .arg(m_accept[1], 0, 'g', 12)
            .toStdString();
    }

    QString m_name;
    QString m_source;
    QString m_reason = "before any operation";
    Side m_from;
    Side m_to;
    std::unique_ptr<KuuCoordSystemConverter> m_forward;
    std::unique_ptr<KuuCoordSystemConverter> m_backward;
    QVector<double> m_accept;
    double m_tolerance = 0.;
    bool m_isInverse = false;
};
} // namespace

TEST(KuuCoordSystemGie, agreesWithPublishedCoordinates)
{
    const QDir data(qEnvironmentVariable("KELVANE_TEST_DATA") + "/crs");
    if (!data.exists())
        GTEST_SKIP() << "no test data (KELVANE_TEST_DATA)";
    Checker checker;
    for (const QString& folder : {QString("gie"), QString("gigs"), QString("euref")}) {
        const QDir files(data.filePath(folder));
        for (const QString& file : files.entryList({"*.gie"}, QDir::Files))
            checker.readGie(files.filePath(file));
    }
    checker.readYaml(data.filePath("cli/test_cs2cs_ignf.yaml"));

    int skipped = 0;
    std::string reasons;
    for (auto reason = checker.skipped.cbegin(); reason != checker.skipped.cend(); ++reason) {
        skipped += reason.value();
        reasons += " " + reason.key().toStdString() + ": " + std::to_string(reason.value()) + ";";
    }
    std::cout << "checked " << checker.checked << " pairs of " << checker.checked + skipped
              << " (skipped:" << reasons << ")\n";
    EXPECT_GT(checker.checked, 300);
}
