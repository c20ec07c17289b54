#include <util/utils/KuuCoordSystemConverter.h>

#include "KuuCoordSystemConverterPrivate.h"

#include <util/utils/KuuCoordSystemService.h>

#include <basic/base/HbbGlobal.h>
#include <basic/calc/HbcAProgress.h>
#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

#include <algorithm>
#include <cmath>

using namespace KuuCoordSystemProj;

namespace
{
/// Why a system cannot be used, in PROJ's words where it has some.
QString reasonOf(const KuuCoordSystem& system)
{
    if (system.serialize().isEmpty())
        return KuuCoordSystemConverter::tr("there is no coordinate system.");
    const Listener listener;
    QString text = system.getProj4().getText();
    if (system.hasEpsgCode())
        text = EPSG + QLatin1Char(':') + system.getEpsgCode();
    if (system.hasIgnfCode())
        text = IGNF + QLatin1Char(':') + system.getIgnfCode();
    if (createCrs(text))
        return KuuCoordSystemConverter::tr("it is neither a geographic nor a projected system.");
    const QString reason = listener.getReason();
    return reason.isEmpty() ? KuuCoordSystemConverter::tr("the PROJ library does not know it.")
                            : reason;
}

void checkValid(const KuuCoordSystem& system)
{
    if (!system.isValid()) {
        throw HbeUserError(
            KuuCoordSystemConverter::tr("The coordinate system \"%1\" cannot be used: %2")
                .arg(system.serialize(), reasonOf(system)));
    }
}

/// The units of one side.
struct Units {
    HbuUnit plane;
    HbuUnit height;
};

Units unitsOf(const KuuCoordSystem& system, const HbuUnit& wanted)
{
    const HbuUnit metre = HbuUnitService::getInstance().getReferenceUnit(HbuEUnitClass::LENGTH);
    const HbuUnit own = system.getUnit();
    const HbuUnit unit = wanted.isValid() && !wanted.isNone() ? wanted : own;
    if (unit.getUnitClass() == HbuEUnitClass::LENGTH)
        return {system.isGeographic() ? own : unit, unit};
    if (!unit.getUnitClass().isAngle()) {
        throw HbeUserError(
            KuuCoordSystemConverter::tr("Coordinates cannot be in the unit \"%1\": it measures "
                                        "neither lengths nor angles.")
                .arg(unit.getName()));
    }
    if (!system.isGeographic()) {
        throw HbeUserError(KuuCoordSystemConverter::tr(
                               "The coordinates of \"%1\" are lengths: they cannot be in the "
                               "unit \"%2\".")
                               .arg(system.getName(), unit.getName()));
    }
    return {KuuCoordSystemConverter::toAngle(unit), metre};
}

/// From a unit to what is `factor` times the reference unit of its class.
HbuUnitTransfo toFactor(const HbuUnit& unit, double factor)
{
    const HbuUnitService& service = HbuUnitService::getInstance();
    const HbuUnit known = service.getUnitFromFactor(unit.getUnitClass(), factor);
    if (known.isValid())
        return service.getConversion(unit, known);
    return unit.getTransfo().followedBy(HbuUnitTransfo::ratio(1., factor));
}

/// Two units that differ, the same system.
KuuCoordSystemTask createUnitTask(const Units& from, const Units& to)
{
    const HbuUnitService& service = HbuUnitService::getInstance();
    KuuCoordSystemTask task;
    task.planeIn = service.getConversion(from.plane, to.plane);
    task.heightIn = service.getConversion(from.height, to.height);
    return task;
}

KuuCoordSystemTask createTask(const KuuCoordSystem& from, const Units& fromUnits,
                              const KuuCoordSystem& to, const Units& toUnits)
{
    const KuuCoordSystemService& service = KuuCoordSystemService::getInstance();
    KuuCoordSystemTask task;
    task.operations =
        KuuCoordSystemOperations::find(service.csToProj4String(from), service.csToProj4String(to));
    const KuuCoordSystemOperations::Side& fromSide = task.operations->getFrom();
    const KuuCoordSystemOperations::Side& toSide = task.operations->getTo();
    task.planeIn = toFactor(fromUnits.plane, fromSide.planeFactor);
    task.heightIn = toFactor(fromUnits.height, fromSide.heightFactor);
    task.planeOut = toFactor(toUnits.plane, toSide.planeFactor).inverted();
    task.heightOut = toFactor(toUnits.height, toSide.heightFactor).inverted();
    if (toSide.isGeographic)
        task.toTurn = task.planeOut.apply(toSide.ownArea.period);
    return task;
}
} // namespace

HbuUnit KuuCoordSystemConverter::toAngle(const HbuUnit& unit)
{
    return unit.getUnitClass().isAngle()
               ? HbuUnitService::getInstance().getUnit(HbuEUnitClass::ANGLE, unit.getKey())
               : unit;
}

KuuCoordSystemConverter::Private::Private(const KuuCoordSystem& fromSystem,
                                          const HbuUnit& fromWanted, const KuuCoordSystem& toSystem,
                                          const HbuUnit& toWanted)
    : from(fromSystem)
    , to(toSystem)
{
    checkValid(from);
    checkValid(to);
    const Units fromUnits = unitsOf(from, fromWanted);
    const Units toUnits = unitsOf(to, toWanted);
    fromUnit = fromUnits.plane;
    toUnit = toUnits.plane;
    if (from.isSameTransfo(to)) {
        task = createUnitTask(fromUnits, toUnits);
    } else if (from.isLocal() || to.isLocal()) {
        throw HbeUserError(
            KuuCoordSystemConverter::tr("Coordinates cannot be converted from \"%1\" to \"%2\": a "
                                        "local system has no place on Earth.")
                .arg(from.getName(), to.getName()));
    } else {
        task = createTask(from, fromUnits, to, toUnits);
    }
}

KuuCoordSystemConverter::Counts& KuuCoordSystemConverter::Counts::operator+=(const Counts& other)
{
    converted += other.converted;
    undefined += other.undefined;
    failed += other.failed;
    outside += other.outside;
    ballpark += other.ballpark;
    worstAccuracy = std::max(worstAccuracy, other.worstAccuracy); // D_FFFF is the greatest
    if (byOperation.size() < other.byOperation.size())
        byOperation.resize(other.byOperation.size());
    for (int i = 0; i < other.byOperation.size(); ++i)
        byOperation[i] += other.byOperation[i];
    return *this;
}

KuuCoordSystemConverter::KuuCoordSystemConverter(const KuuCoordSystem& from,
                                                 const KuuCoordSystem& to)
    : KuuCoordSystemConverter(from, HbuUnit(), to, HbuUnit())
{
}

KuuCoordSystemConverter::KuuCoordSystemConverter(const KuuCoordSystem& from,
                                                 const HbuUnit& fromUnit, const KuuCoordSystem& to,
                                                 const HbuUnit& toUnit)
    : d(std::make_shared<const Private>(from, fromUnit, to, toUnit))
{
}

KuuCoordSystemConverter::KuuCoordSystemConverter(const KuuCoordSystemConverter& other) = default;
KuuCoordSystemConverter&
KuuCoordSystemConverter::operator=(const KuuCoordSystemConverter& other) = default;
KuuCoordSystemConverter::~KuuCoordSystemConverter() = default;

bool KuuCoordSystemConverter::isIdentity() const
{
    return !d->task.operations && d->task.planeIn.isIdentity() && d->task.heightIn.isIdentity();
}

bool KuuCoordSystemConverter::isReprojection() const
{
    return d->task.operations != nullptr;
}

QVector<KuuCoordSystemConverter::Operation> KuuCoordSystemConverter::getOperations() const
{
    return d->task.operations ? d->task.operations->getOperations() : QVector<Operation>();
}

bool KuuCoordSystemConverter::convert(HbgVector2D& point) const
{
    HbgVector2D image = point;
    if (KuuCoordSystemBlock(d->task).convert(&image.x, &image.y, nullptr, 1, 1).converted == 0)
        return false;
    point = image;
    return true;
}

bool KuuCoordSystemConverter::convert(HbgVector3D& point) const
{
    HbgVector3D image = point;
    if (KuuCoordSystemBlock(d->task).convert(&image.x, &image.y, &image.z, 1, 1).converted == 0)
        return false;
    point = image;
    return true;
}

bool KuuCoordSystemConverter::convert(QPointF& point) const
{
    HbgVector2D image(point.x(), point.y());
    if (!convert(image))
        return false;
    point = QPointF(image.x, image.y);
    return true;
}

KuuCoordSystemConverter::Counts KuuCoordSystemConverter::convert(double* x, double* y, double* z,
                                                                 qint64 count, qint64 stride,
                                                                 int maxThreads) const
{
    return d->convert(x, y, z, count, stride, maxThreads, nullptr);
}

double KuuCoordSystemConverter::transformDistance(double distance) const
{
    const HbuUnitTransfo transfo =
        HbuUnitService::getInstance().getConversion(d->fromUnit, d->toUnit);
    return transfo.isValid() ? transfo.apply(distance) : HbbGlobal::D_FFFF;
}

double KuuCoordSystemConverter::transformDistance(double distance, const QPointF& place) const
{
    if (!isReprojection())
        return transformDistance(distance);
    HbgVector2D origin(place.x(), place.y());
    HbgVector2D east(place.x() + distance, place.y());
    HbgVector2D north(place.x(), place.y() + distance);
    if (HbbGlobal::isUndefined(distance) || !convert(origin) || !convert(east) || !convert(north))
        return HbbGlobal::D_FFFF;
    HbgVector2D toEast = east - origin;
    HbgVector2D toNorth = north - origin;
    if (d->to.isGeographic()) { // the shorter way round
        toEast.x = std::remainder(toEast.x, d->task.toTurn);
        toNorth.x = std::remainder(toNorth.x, d->task.toTurn);
    }
    return std::copysign((toEast.length() + toNorth.length()) / 2., distance);
}
