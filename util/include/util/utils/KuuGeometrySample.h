#pragma once

#include <util/KuExport.h>

#include <basic/geometry/HbgBox.h>
#include <basic/geometry/HbgEDimension.h>
#include <basic/geometry/HbgEPrimitive.h>
#include <basic/unit/HbuUnitTransfo.h>

#include <variant>

class KuuGeometrySet;

/// One geometry taken out of a geometry set, or to be put into one; a value, any thread. This
/// version holds points; an empty sample has primitive NONE.
class KELVANE_UTIL_EXPORT KuuGeometrySample
{
public:
    KuuGeometrySample() = default;
    KuuGeometrySample(const HbgVector2D& point); // implicit: a geometry is a sample
    KuuGeometrySample(const HbgVector3D& point);

    HbgEPrimitive getPrimitive() const;
    bool isEmpty() const { return getPrimitive() == HbgEPrimitive::NONE; }
    bool isPoint() const { return isPoint2D() || isPoint3D(); }
    bool isPoint2D() const { return getPrimitive() == HbgEPrimitive::POINT_2D; }
    bool isPoint3D() const { return getPrimitive() == HbgEPrimitive::POINT_3D; }
    bool isPolyline() const { return getPrimitive() == HbgEPrimitive::POLYLINE; }
    bool isPolygon() const { return getPrimitive() == HbgEPrimitive::POLYGON; }
    bool isMesh() const { return getPrimitive() == HbgEPrimitive::MESH; }
    /// 2D for an empty sample.
    HbgEDimension getDimension() const;

    /// The geometry; a programming error for a sample that is no such point.
    const HbgVector2D& toPoint2D() const;
    const HbgVector3D& toPoint3D() const;

    /// Changes the primitive; false, and no change, where that is not possible. A 2D point becomes
    /// a 3D one with an undefined elevation, a 3D point a 2D one without it.
    bool convertGeometry(const HbgEPrimitive& primitive);
    /// The same as a set of one geometry; a set that is not valid where it is not possible.
    KuuGeometrySet getConvertedGeometry(const HbgEPrimitive& primitive) const;
    /// Adds an undefined elevation, or drops the elevation.
    void convertDimension(const HbgEDimension& dimension);
    /// Applies a unit transformation to every defined coordinate, elevations included; an invalid
    /// one changes nothing.
    void rescale(const HbuUnitTransfo& transfo);
    HbgBox getBoundingBox() const;

    bool operator==(const KuuGeometrySample& other) const { return m_geometry == other.m_geometry; }
    bool operator!=(const KuuGeometrySample& other) const { return !(*this == other); }

private:
    std::variant<std::monostate, HbgVector2D, HbgVector3D> m_geometry;
};
