// Where things lie: polygons and polylines in geometry sets, picked by a place, a rectangle and a
// lasso; then one of them in another coordinate system.
#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuGeometrySet.h>

#include <basic/error/HbeError.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>
#include <basic/unit/HbuUnit.h>

#include <cstdio>

namespace
{
/// Two parishes on the Loire, in degrees; the first one has a lake that is not part of it.
KuuGeometrySet makeParishes()
{
    HbgGeomPolygon west({{1.8, 47.8}, {1.9, 47.8}, {1.9, 47.9}, {1.8, 47.9}});
    west.addHole(0, {{1.83, 47.83}, {1.87, 47.83}, {1.85, 47.86}});
    HbgGeomPolygonSet parishes;
    parishes.append(west);
    parishes.append(HbgGeomPolygon({{1.9, 47.8}, {2.0, 47.8}, {1.95, 47.9}, {1.9, 47.9}}));
    return KuuGeometrySet(parishes);
}

KuuGeometrySet makeRoads()
{
    HbgGeomPolylineSet roads;
    roads.append(HbgGeomPolyline({HbgVector2D(1.75, 47.81), {1.88, 47.82}, {2.1, 47.81}}));
    roads.append(HbgGeomPolyline({HbgVector2D(1.95, 47.7), {1.95, 48.0}}));
    const bool areMeasured = false; // free-form, not boreholes or survey lines
    return KuuGeometrySet(roads, areMeasured);
}

void print(const char* what, const HbiIntervalIntSmallDisjoint& ranks)
{
    std::printf("%-28s", what);
    for (const int rank : ranks.ranks())
        std::printf(" %d", rank);
    std::printf("\n");
}

void pick(const KuuGeometrySet& parishes, const KuuGeometrySet& roads)
{
    const QPointF house(1.86, 47.815);
    std::printf("the house is in parish %d\n", parishes.pointToRank(house, 0.0));
    std::printf("the road to it is %d\n", roads.pointToRank(house, 0.01));
    print("parishes in the lake:", parishes.pointToRanks({1.85, 47.84}, 0.0));
    print("parishes in the rectangle:", parishes.rectangleToRanks({1.88, 47.85, 0.05, 0.02}));
    print("roads in the lasso:", roads.polygonToRanks({{1.7, 47.7}, {1.9, 47.7}, {1.8, 47.9}}));
}

bool convert(KuuGeometrySample road)
{
    const KuuCoordSystem degrees = KuuCoordSystem::fromUserText("EPSG:4326");
    const KuuCoordSystem lambert = KuuCoordSystem::fromUserText("EPSG:2154");
    // Units that are not valid stand for those of the systems: degrees and metres.
    if (!road.convertCoord(degrees, HbuUnit(), lambert, HbuUnit()))
        return false;
    std::printf("the road is %.0f m long, from\n", road.toPolyline().getLength());
    for (const HbgVector3D& point : road.toPolyline().getPoints())
        std::printf("  %.2f %.2f\n", point.x, point.y);
    return true;
}
} // namespace

int main()
{
    try {
        const KuuGeometrySet parishes = makeParishes();
        const KuuGeometrySet roads = makeRoads();
        pick(parishes, roads);
        const bool isPicked = parishes.pointToRank({1.85, 47.84}, 0.0) == -1 &&
                              parishes.rectangleToRanks({1.88, 47.85, 0.05, 0.02}).getCount() == 2;
        return convert(roads.getGeometrySample(1)) && isPicked ? 0 : 1;
    } catch (const HbeError& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
