#include "KuuCoordSystemConverterPrivate.h"

#include <basic/base/HbbGlobal.h>
#include <basic/unit/HbuUnitService.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{
constexpr int STEPS = 32;
constexpr int SIDE = STEPS + 1;
constexpr int POINTS = SIDE * SIDE;

/// The images of a grid of points over a rectangle, edges included.
class Samples
{
public:
    Samples(const KuuCoordSystemConverter& converter, const QRectF& rectangle, double z)
        : m_hasHeights(!HbbGlobal::isUndefined(z))
    {
        for (int i = 0; i < POINTS; ++i) {
            m_x[i] = rectangle.left() + rectangle.width() * (i % SIDE) / STEPS;
            m_y[i] = rectangle.top() + rectangle.height() * (i / SIDE) / STEPS;
            m_z[i] = z;
        }
        converter.convert(m_x.data(), m_y.data(), m_hasHeights ? m_z.data() : nullptr, POINTS);
    }

    /// Around all images, and what may bulge out between them.
    void uniteInto(HbgBox& box) const
    {
        for (int i = 0; i < POINTS; ++i) {
            if (!isDefined(i))
                continue;
            const double dx = bulge(m_x, i);
            const double dy = bulge(m_y, i);
            const double z = m_hasHeights ? m_z[i] : HbbGlobal::D_FFFF;
            box.unite(HbgVector3D(m_x[i] - dx, m_y[i] - dy, z));
            box.unite(HbgVector3D(m_x[i] + dx, m_y[i] + dy, z));
        }
    }

    /// Two neighbours lie on either side of the antimeridian; `turn` is 360 degrees.
    bool crossesAntimeridian(double turn) const
    {
        for (int i = 0; i < POINTS; ++i) {
            const bool hasRight = (i + 1) % SIDE != 0;
            const bool hasUpper = i + SIDE < POINTS;
            if ((hasRight && isJump(i, i + 1, turn)) || (hasUpper && isJump(i, i + SIDE, turn)))
                return true;
        }
        return false;
    }

    /// The longitudes along the edge make a whole turn.
    bool goesAroundPole(double turn) const
    {
        double sum = 0.;
        int last = 0;
        for (int step = 1; step <= 4 * STEPS; ++step) {
            const int next = edgeSample(step % (4 * STEPS));
            if (!isDefined(last) || !isDefined(next))
                return false;
            sum += std::remainder(m_x[next] - m_x[last], turn);
            last = next;
        }
        return std::fabs(sum) > turn / 2.;
    }

private:
    using Values = std::array<double, POINTS>;

    bool isDefined(int i) const { return !HbbGlobal::isUndefined(m_x[i]); }

    bool isJump(int i, int j, double turn) const
    {
        return isDefined(i) && isDefined(j) && std::fabs(m_x[i] - m_x[j]) > turn / 2.;
    }

    static int edgeSample(int step)
    {
        const int along = step % STEPS;
        switch (step / STEPS) {
        case 0:
            return along;
        case 1:
            return along * SIDE + STEPS;
        case 2:
            return POINTS - 1 - along;
        default:
            return (STEPS - along) * SIDE;
        }
    }

    /// How far a smooth curve through the samples may go beyond this one: from the second
    /// differences along both axes, twice what a parabola does.
    double bulge(const Values& values, int i) const
    {
        const int column = std::clamp(i % SIDE, 1, STEPS - 1);
        const int row = std::clamp(i / SIDE, 1, STEPS - 1);
        const int alongRow = i / SIDE * SIDE + column;
        const int alongColumn = row * SIDE + i % SIDE;
        return (curvature(values, alongRow, 1) + curvature(values, alongColumn, SIDE)) / 4.;
    }

    double curvature(const Values& values, int i, int step) const
    {
        if (!isDefined(i - step) || !isDefined(i) || !isDefined(i + step))
            return 0.;
        return std::fabs(values[i - step] - 2. * values[i] + values[i + step]);
    }

    bool m_hasHeights;
    Values m_x;
    Values m_y;
    Values m_z;
};

/// The last corrections where the images are longitudes and latitudes.
HbgBox onGlobe(const HbgBox& box, double turn, bool isAllRound, bool hasPole)
{
    if (box.isEmpty())
        return box;
    const double pole = turn / 4.;
    double yMin = std::max(box.getYMin(), -pole);
    double yMax = std::min(box.getYMax(), pole);
    if (hasPole)
        (yMin + yMax > 0. ? yMax : yMin) = yMin + yMax > 0. ? pole : -pole;
    const double xMin = isAllRound ? -turn / 2. : box.getXMin();
    const double xMax = isAllRound ? turn / 2. : box.getXMax();
    return {HbgVector3D(xMin, yMin, box.getZMin()), HbgVector3D(xMax, yMax, box.getZMax())};
}
} // namespace

HbgBox KuuCoordSystemConverter::convert(const HbgBox& box) const
{
    if (box.isEmpty() || isIdentity())
        return box;
    const QRectF rectangle(QPointF(box.getXMin(), box.getYMin()),
                           QPointF(box.getXMax(), box.getYMax()));
    const double turn = d->task.toTurn;
    HbgBox image;
    bool isAllRound = false;
    bool hasPole = false;
    for (const double z : {box.getZMin(), box.getZMax()}) {
        const Samples samples(*this, rectangle, z);
        samples.uniteInto(image);
        if (turn > 0.) {
            hasPole = hasPole || samples.goesAroundPole(turn);
            isAllRound = isAllRound || hasPole || samples.crossesAntimeridian(turn);
        }
        if (!box.is3D())
            break;
    }
    return turn > 0. ? onGlobe(image, turn, isAllRound, hasPole) : image;
}

QRectF KuuCoordSystemConverter::convert(const QRectF& rectangle) const
{
    const QRectF normal = rectangle.normalized();
    const HbgBox image = convert(HbgBox(HbgVector2D(normal.left(), normal.top()),
                                        HbgVector2D(normal.right(), normal.bottom())));
    if (image.isEmpty())
        return {};
    return {QPointF(image.getXMin(), image.getYMin()), QPointF(image.getXMax(), image.getYMax())};
}
