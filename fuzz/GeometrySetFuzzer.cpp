// Geometry sets from mementos: any fields give a set or a refusal; what was made can be asked
// anything, and comes back the same from a memento of its own.
//
// An input is lines KEY=TEXT, or KEY:NUMBERS for an array, packed here so that no fuzzer has to
// find out how to compress.
#include "FuzzTarget.h"

#include <util/utils/KuuGeometrySet.h>
#include <util/utils/KuuMementoBytes.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

namespace
{
constexpr std::size_t LARGEST_INPUT = 1 << 14;
constexpr qint64 MAX_CELLS = 100000; ///< of a set that is looked into: they cost no input

template <class T>
QByteArray packed(const QList<QByteArray>& texts)
{
    std::vector<T> numbers;
    for (const QByteArray& text : texts) {
        if constexpr (std::is_floating_point_v<T>)
            numbers.push_back(text.toDouble());
        else
            numbers.push_back(static_cast<T>(text.toLongLong()));
    }
    return KuuMementoBytes::pack(numbers.data(), numbers.size() * sizeof(T));
}

QVariantMap readMap(const QByteArray& input)
{
    QVariantMap map;
    for (const QByteArray& line : input.split('\n')) {
        const int text = line.indexOf('=');
        const int array = line.indexOf(':');
        if (text >= 0 && (array < 0 || text < array)) {
            map[QString::fromUtf8(line.left(text))] = line.mid(text + 1);
        } else if (array >= 0) {
            const QByteArray key = line.left(array);
            const QList<QByteArray> numbers = line.mid(array + 1).simplified().split(' ');
            // Of two arrays of one name, those of a sparse grid are the wide ones.
            const bool isWide = map.value("kind").toByteArray() == "GRID_SPARSE";
            map[QString::fromUtf8(key)] = key == "coordinates" ? packed<double>(numbers)
                                          : key == "closed"    ? packed<quint8>(numbers)
                                          : isWide             ? packed<qint64>(numbers)
                                                               : packed<qint32>(numbers);
        }
    }
    return map;
}

void checkSample(const KuuGeometrySample& sample)
{
    sample.getBoundingBox();
    for (const HbgEPrimitive& primitive : HbgEPrimitive::createIterator()) {
        const KuuGeometrySet one = sample.getConvertedGeometry(primitive);
        require(one.getSampleCount() == (one.isValid() ? 1 : 0));
    }
    KuuGeometrySample scaled = sample;
    scaled.rescale(HbuUnitTransfo::affine(0.3048, 1.));
}

void checkPicks(const KuuGeometrySet& set, const HbgBox& box)
{
    const QPointF places[] = {{0., 0.}, {box.getXMin(), box.getYMax()}};
    for (const QPointF& place : places) {
        const qint64 count = set.getSampleCount();
        require(set.pointToRank(place, 1.) < count);
        const QRectF rectangle(place, QSizeF(2., 3.));
        const QVector<QPointF> lasso = {place, {0., 5.}, {5., 0.}, {7., 7.}};
        for (const auto& ranks : {set.pointToRanks(place, 1.), set.rectangleToRanks(rectangle),
                                  set.polygonToRanks(lasso)})
            require(ranks.isEmpty() || (ranks.getMin() >= 0 && ranks.getMax() < count));
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > LARGEST_INPUT)
        return 0;
    const QVariantMap map = readMap(QByteArray(reinterpret_cast<const char*>(data), int(size)));
    bool ok = false;
    const KuuGeometrySet set = KuuGeometrySet::fromVariantMap(map, &ok);
    require(ok || !set.isValid());
    if (!set.isValid() || (!set.isGrid() && set.getSampleCount() > MAX_CELLS))
        return 0;

    const KuuGeometrySet again = KuuGeometrySet::fromVariantMap(set.toVariantMap(), &ok);
    require(ok && again == set);
    checkPicks(set, set.getBoundingBox());
    require(set.getGeometrySample(set.getSampleCount()).isEmpty());
    KuuGeometrySet edited = set;
    for (const qint64 rank : {qint64(0), set.getSampleCount() - 1}) {
        const KuuGeometrySample sample = set.getGeometrySample(rank);
        checkSample(sample);
        require(edited.addGeometrySample(sample) == !sample.isEmpty());
        require(edited.updateGeometrySample(rank, sample) == !sample.isEmpty());
        require(edited.removeGeometrySample(set.getSampleCount()) == !sample.isEmpty());
    }
    require(edited == set);
    return 0;
}
