#include <util/utils/KuuCoordSystemArea.h>

#include <basic/base/HbbGlobal.h>

#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <algorithm>
#include <cmath>

namespace
{
constexpr double TURN = 360.;

double radians(double degrees)
{
    return degrees * (M_PI / 180.);
}

/// From 0 to below 360.
double modulo(double longitude)
{
    const double rest = std::fmod(longitude, TURN);
    return rest < 0. ? rest + TURN : rest;
}
} // namespace

KuuCoordSystemArea KuuCoordSystemArea::fromBox(double west, double south, double east, double north)
{
    KuuCoordSystemArea extent;
    extent.west = west;
    extent.south = south;
    extent.east = east;
    extent.north = north;
    extent.isValid = true;
    return extent;
}

KuuCoordSystemArea KuuCoordSystemArea::fromText(const QString& text)
{
    QVector<double> numbers;
    for (const QString& word : text.split(QLatin1Char(',')))
        numbers.append(HbbGlobal::convertString(word, HbbGlobal::D_FFFF));
    if (numbers.size() == 2)
        numbers += numbers;
    if (numbers.size() != 4)
        return {};
    const auto isWithin = [&numbers](int i, double limit) {
        return std::abs(numbers.at(i)) <= limit;
    };
    if (!isWithin(0, TURN) || !isWithin(1, 90.) || !isWithin(2, TURN) || !isWithin(3, 90.) ||
        numbers.at(1) > numbers.at(3))
        return {};
    return fromBox(numbers.at(0), numbers.at(1), numbers.at(2), numbers.at(3));
}

double KuuCoordSystemArea::getWidth() const
{
    const double width = modulo(east - west);
    return width == 0. && east != west ? TURN : width; // -180 to 180 is the world
}

double KuuCoordSystemArea::getSize() const
{
    if (!isValid)
        return 0.;
    return getWidth() / TURN * (std::sin(radians(north)) - std::sin(radians(south))) / 2.;
}

bool KuuCoordSystemArea::contains(const KuuCoordSystemArea& other) const
{
    if (!isValid || !other.isValid || other.south < south || other.north > north)
        return false;
    const double width = getWidth();
    return width >= TURN || modulo(other.west - west) + other.getWidth() <= width;
}
