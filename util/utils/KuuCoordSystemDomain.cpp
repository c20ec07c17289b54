#include "KuuCoordSystemDomain.h"

#include <algorithm>
#include <cmath>

using namespace KuuCoordSystemProj;

namespace
{
constexpr double TURN = 6.283185307179586476925287;

/// The system's ellipsoid with longitudes and latitudes in degrees from Greenwich.
PjPointer createPlainGeographic(const PJ* crs)
{
    const PjPointer ellipsoid(proj_get_ellipsoid(context(), crs));
    double a = 0.;
    double flattening = 0.;
    if (!ellipsoid || !proj_ellipsoid_get_parameters(context(), ellipsoid.get(), &a, nullptr,
                                                     nullptr, &flattening))
        return nullptr;
    QByteArray text = "+proj=longlat +a=" + QByteArray::number(a, 'g', 17);
    if (flattening > 0.)
        text += " +rf=" + QByteArray::number(flattening, 'g', 17);
    return PjPointer(proj_create(context(), text + " +no_defs +type=crs"));
}

/// Degrees from Greenwich to the system, without a change of datum and so without files.
PjPointer createFromGeographic(const PJ* crs)
{
    const PjPointer geographic = createPlainGeographic(crs);
    if (!geographic)
        return nullptr;
    const char* const options[] = {nullptr};
    const PjPointer operation(
        proj_create_crs_to_crs_from_pj(context(), geographic.get(), crs, nullptr, options));
    return operation ? PjPointer(proj_normalize_for_visualization(context(), operation.get()))
                     : nullptr;
}
} // namespace

bool KuuCoordSystemDomain::isEverywhere() const
{
    return contains(KuuCoordSystemBox());
}

bool KuuCoordSystemDomain::contains(double x, double y) const
{
    for (const KuuCoordSystemBox& box : boxes) {
        if (box.contains(x, y) ||
            (period > 0. && (box.contains(x - period, y) || box.contains(x + period, y))))
            return true;
    }
    return false;
}

bool KuuCoordSystemDomain::contains(const KuuCoordSystemBox& box) const
{
    return std::any_of(boxes.begin(), boxes.end(),
                       [&box](const KuuCoordSystemBox& own) { return own.contains(box); });
}

bool KuuCoordSystemDomain::contains(const KuuCoordSystemDomain& other) const
{
    return std::all_of(other.boxes.begin(), other.boxes.end(),
                       [this](const KuuCoordSystemBox& box) { return contains(box); });
}

bool KuuCoordSystemDomain::intersects(const KuuCoordSystemBox& box) const
{
    for (const KuuCoordSystemBox& own : boxes) {
        for (const double shift : {0., period, -period}) {
            KuuCoordSystemBox shifted = own;
            shifted.xMin += shift;
            shifted.xMax += shift;
            if (shifted.intersects(box))
                return true;
        }
    }
    return false;
}

KuuCoordSystemArea readAreaOfUse(const PJ* object)
{
    KuuCoordSystemArea area;
    const char* name = nullptr;
    area.isValid = object &&
                   proj_get_area_of_use(context(), object, &area.west, &area.south, &area.east,
                                        &area.north, &name) != 0 &&
                   area.west >= -180. && area.north <= 90.; // -1000: not known
    area.name = QString::fromUtf8(name);
    return area;
}

KuuCoordSystemDomainProjector::KuuCoordSystemDomainProjector(const PJ* crs)
{
    PjPointer horizontal = horizontalPart(PjPointer(proj_clone(context(), crs)));
    if (!horizontal)
        return;
    if (proj_get_type(horizontal.get()) != PJ_TYPE_PROJECTED_CRS) {
        const double factor = axisFactor(horizontal.get(), 0);
        m_period = factor > 0. ? TURN / factor : 0.;
    }
    m_fromGeographic = createFromGeographic(horizontal.get());
}

KuuCoordSystemBox KuuCoordSystemDomainProjector::projectBox(double west, double south, double east,
                                                            double north) const
{
    constexpr int STEPS = 20;
    double x[4 * (STEPS + 1)];
    double y[4 * (STEPS + 1)];
    for (int i = 0; i <= STEPS; ++i) {
        const double lon = west + i * (east - west) / STEPS;
        const double lat = south + i * (north - south) / STEPS;
        const double edges[4][2] = {{lon, south}, {lon, north}, {west, lat}, {east, lat}};
        for (int edge = 0; edge < 4; ++edge) {
            x[4 * i + edge] = edges[edge][0];
            y[4 * i + edge] = edges[edge][1];
        }
    }
    const std::size_t count = std::size(x);
    proj_trans_generic(m_fromGeographic.get(), PJ_FWD, x, sizeof(double), count, y, sizeof(double),
                       count, nullptr, 0, 0, nullptr, 0, 0);
    KuuCoordSystemBox box;
    std::swap(box.xMin, box.xMax);
    std::swap(box.yMin, box.yMax);
    for (std::size_t i = 0; i < count; ++i) {
        if (!std::isfinite(x[i]) || !std::isfinite(y[i]))
            continue;
        box.xMin = std::min(box.xMin, x[i]);
        box.yMin = std::min(box.yMin, y[i]);
        box.xMax = std::max(box.xMax, x[i]);
        box.yMax = std::max(box.yMax, y[i]);
    }
    return box;
}

KuuCoordSystemDomain KuuCoordSystemDomainProjector::project(const KuuCoordSystemArea& area,
                                                            double margin) const
{
    KuuCoordSystemDomain result;
    result.period = m_period;
    const bool isWorld =
        area.west <= -180. && area.east >= 180. && area.south <= -90. && area.north >= 90.;
    if (!area.isValid || isWorld || !m_fromGeographic)
        return result;
    std::vector<KuuCoordSystemBox> boxes;
    if (area.west <= area.east) {
        boxes = {projectBox(area.west, area.south, area.east, area.north)};
    } else {
        boxes = {projectBox(area.west, area.south, 180., area.north),
                 projectBox(-180., area.south, area.east, area.north)};
    }
    boxes.erase(std::remove_if(boxes.begin(), boxes.end(),
                               [](const KuuCoordSystemBox& box) { return box.xMin > box.xMax; }),
                boxes.end());
    for (KuuCoordSystemBox& box : boxes) {
        const double dx = margin * (box.xMax - box.xMin);
        const double dy = margin * (box.yMax - box.yMin);
        box = {box.xMin - dx, box.yMin - dy, box.xMax + dx, box.yMax + dy};
    }
    if (!boxes.empty())
        result.boxes = boxes;
    return result;
}
