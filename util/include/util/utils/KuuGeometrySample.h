#pragma once

#include <util/KuExport.h>

#include <basic/geometry/HbgBox.h>
#include <basic/geometry/HbgEDimension.h>
#include <basic/geometry/HbgEPrimitive.h>
#include <basic/geometry/HbgGeomPolygon.h>
#include <basic/geometry/HbgGeomPolyline.h>
#include <basic/geometry/HbgMesh.h>
#include <basic/unit/HbuUnitTransfo.h>

#include <variant>

class HbuUnit;
class KuuCoordSystem;
class KuuGeometrySet;

/// One geometry taken out of a geometry set, or to be put into one; a value, any thread. An empty
/// sample has primitive NONE; a polyline without points is a polyline, not an empty sample.
class KELVANE_UTIL_EXPORT KuuGeometrySample
{
public:
    KuuGeometrySample() = default;
    KuuGeometrySample(const HbgVector2D& point); // implicit: a geometry is a sample
    KuuGeometrySample(const HbgVector3D& point);
    KuuGeometrySample(const HbgGeomPolyline& polyline);
    KuuGeometrySample(const HbgGeomPolygon& polygon);
    KuuGeometrySample(const HbgMesh& mesh);

    HbgEPrimitive getPrimitive() const;
    bool isEmpty() const { return std::holds_alternative<std::monostate>(m_geometry); }
    bool isPoint() const { return isPoint2D() || isPoint3D(); }
    bool isPoint2D() const { return std::holds_alternative<HbgVector2D>(m_geometry); }
    bool isPoint3D() const { return std::holds_alternative<HbgVector3D>(m_geometry); }
    bool isPolyline() const { return std::holds_alternative<HbgGeomPolyline>(m_geometry); }
    bool isPolygon() const { return std::holds_alternative<HbgGeomPolygon>(m_geometry); }
    bool isMesh() const { return std::holds_alternative<HbgMesh>(m_geometry); }
    /// Points and polylines have their own; a polygon is 2D, a mesh 3D, an empty sample 2D.
    HbgEDimension getDimension() const;

    /// The geometry; a programming error for a sample that is none of the kind.
    const HbgVector2D& toPoint2D() const;
    const HbgVector3D& toPoint3D() const;
    const HbgGeomPolyline& toPolyline() const;
    const HbgGeomPolygon& toPolygon() const;
    const HbgMesh& toMesh() const;

    /// Changes the primitive; false, and no change, where that is not possible. A 2D point becomes
    /// a 3D one with an undefined elevation, a 3D point a 2D one without it; a closed polyline
    /// becomes the polygon within it, a polygon of one contour without holes the polyline around
    /// it. Into what it is already, every sample converts but the empty one.
    bool convertGeometry(const HbgEPrimitive& primitive);
    /// The same as a set of one geometry: POINTS, POLYLINES, POLYGONS or meshes; a set that is not
    /// valid where it is not possible.
    KuuGeometrySet getConvertedGeometry(const HbgEPrimitive& primitive) const;
    /// Adds undefined elevations to a point or a polyline, or drops the elevations. Polygons and
    /// meshes stay as they are: they have one dimension only.
    void convertDimension(const HbgEDimension& dimension);

    /// Converts the coordinates from the system and unit that they are in now into others, with
    /// KuuCoordSystemConverter, which says what units stand for and what becomes of elevations.
    /// False, and no change, for a system that is not valid, where there is no conversion, where a
    /// point of the geometry cannot be converted, and for an empty sample. Nothing is raised.
    bool convertCoord(const KuuCoordSystem& from, const HbuUnit& fromUnit, const KuuCoordSystem& to,
                      const HbuUnit& toUnit);
    /// Applies a unit transformation to every defined coordinate, elevations included. An invalid
    /// one changes nothing, nor does one that takes a coordinate beyond the range of numbers.
    void rescale(const HbuUnitTransfo& transfo);

    HbgBox getBoundingBox() const;

    bool operator==(const KuuGeometrySample& other) const { return m_geometry == other.m_geometry; }
    bool operator!=(const KuuGeometrySample& other) const { return !(*this == other); }

private:
    std::variant<std::monostate, HbgVector2D, HbgVector3D, HbgGeomPolyline, HbgGeomPolygon, HbgMesh>
        m_geometry;
};
