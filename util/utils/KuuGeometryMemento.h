#pragma once

#include <util/utils/KuuMementoBytes.h>

#include <QtCore/QVariantMap>

#include <limits>
#include <vector>

class HbgGeomGrid;
class HbgGeomPointSet;
class HbgGeomPolygonSet;
class HbgGeomPolylineSet;
class HbgMeshSet;
class HbgSparseGrid;

/// The containers of a geometry set as fields of a map, see docs/formats/dataset-memento.md. Arrays
/// of numbers are packed, one field each (KuuMementoBytes); the parameters of a grid are texts.
namespace KuuGeometryMemento
{
/// Raised, beside the HbeUserError of a packed text, by a map that does not describe a whole
/// container. Nobody outside sees either.
struct NotWhole {
};

inline void require(bool isTrue)
{
    if (!isTrue)
        throw NotWhole();
}

template <class T>
void writeArray(QVariantMap& map, const QString& key, const std::vector<T>& values)
{
    map[key] = KuuMementoBytes::pack(values.data(), values.size() * sizeof(T));
}

/// A packed array whose length is known before any memory is taken for it.
template <class T>
class PackedArray
{
public:
    PackedArray(const QVariantMap& map, const QString& key)
        : m_bytes(map.value(key).toByteArray())
    {
        require(map.contains(key) && m_bytes.getSize() % sizeof(T) == 0);
    }

    quint64 getLength() const { return m_bytes.getSize() / sizeof(T); }
    std::vector<T> unpack() const
    {
        std::vector<T> values(getLength());
        m_bytes.unpack(values.data());
        return values;
    }

private:
    KuuMementoBytes m_bytes;
};

/// An array of as many values as elsewhere is said.
template <class T>
std::vector<T> readArray(const QVariantMap& map, const QString& key, quint64 length)
{
    const PackedArray<T> array(map, key);
    require(array.getLength() == length);
    return array.unpack();
}

/// What each of some elements has of smaller ones, and how many these are together.
struct Counts {
    std::vector<qint32> counts;
    quint64 sum = 0;
};

/// As many counts as elsewhere is said, none of them negative.
Counts readCounts(const QVariantMap& map, const QString& key, quint64 length);

/// The number of elements of a set; it makes an array that got lost a fault, and no empty set.
void writeCount(QVariantMap& map, qint64 count);
quint64 readCount(const QVariantMap& map, qint64 most = std::numeric_limits<int>::max());

void encode(const HbgGeomPointSet& points, QVariantMap& map);
void encode(const HbgGeomPolylineSet& polylines, QVariantMap& map);
void encode(const HbgGeomPolygonSet& polygons, QVariantMap& map);
void encode(const HbgGeomGrid& grid, QVariantMap& map);
void encode(const HbgSparseGrid& grid, QVariantMap& map);
void encode(const HbgMeshSet& meshes, QVariantMap& map);

/// Each fills an empty container, whose dimension or type is that of the map, or raises NotWhole or
/// HbeUserError.
void decode(const QVariantMap& map, HbgGeomPointSet& points);
void decode(const QVariantMap& map, HbgGeomPolylineSet& polylines);
void decode(const QVariantMap& map, HbgGeomPolygonSet& polygons);
void decode(const QVariantMap& map, HbgGeomGrid& grid);
void decode(const QVariantMap& map, HbgSparseGrid& grid);
void decode(const QVariantMap& map, HbgMeshSet& meshes);

/// The finite numbers of a text, separated by blanks; NotWhole for anything else in it.
std::vector<double> readNumbers(const QVariantMap& map, const QString& key);
} // namespace KuuGeometryMemento
