#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuCoordSystem.h>

#include <basic/geometry/HbgBox.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <memory>
#include <vector>

class HbcAProgress;
class HbdAVariable;
class HbgGeomPolygon;

/// Converts coordinates from one coordinate system to another with the PROJ library. Built once
/// (operations are found in a cache that all converters share), used for any number of points; a
/// copyable value. Const operations may run in several threads at once: each thread has its PROJ
/// context.
///
/// Coordinates are x = east or longitude and y = north or latitude, on both sides, whatever the
/// authorities' axis orders (a system whose own axes run west or south keeps them so). Each side
/// has a unit: a length unit or, for a geographic system, an angle unit. A length unit of a
/// geographic system is that of the elevations alone; longitudes and latitudes are then in degrees.
/// Elevations are in the side's length unit, metres where it has none. PROJ converts elevations
/// where both systems have a vertical part (a point without one stands at 0 then); they are handed
/// through otherwise, but for the unit.
///
/// Two systems of one transformation (KuuCoordSystem::isSameTransfo), local ones included, convert
/// units only. Undefined coordinates (HbbGlobal::D_FFFF, NaN) come out as D_FFFF, and a point of
/// which x or y is undefined has no image: a reprojection leaves nothing of it defined. A point
/// that PROJ cannot convert, or with an infinite coordinate, becomes undefined in all its
/// coordinates and is counted, never an infinity.
class KELVANE_UTIL_EXPORT KuuCoordSystemConverter
{
    Q_DECLARE_TR_FUNCTIONS(KuuCoordSystemConverter)

public:
    /// One of the operations that PROJ knows between the two systems.
    struct Operation {
        QString name;      ///< the authority's
        double accuracy;   ///< in metres; HbbGlobal::D_FFFF where nobody stated it
        QString areaName;  ///< of use; empty where nobody stated it
        QRectF area;       ///< west and south at its top left, in degrees; null likewise
        bool isBallpark;   ///< it leaves the change of datum out: tens of metres may be missing
        QStringList grids; ///< files that it needs and that are not there; it is not used then
    };
    /// What becomes of the points; the first three add up to the number of points.
    struct Counts {
        qint64 converted = 0;
        qint64 undefined = 0; ///< came undefined
        qint64 failed = 0;    ///< PROJ refused them; undefined now
        qint64 outside = 0;   ///< of the converted, those outside of the area of use of either
                              ///< system: a result that nobody vouches for
        qint64 ballpark = 0;  ///< of the converted, those by an operation without datum shift
        double worstAccuracy =
            0; ///< of the operations used, in metres; D_FFFF: one of them unknown
        QVector<qint64> byOperation; ///< the converted ones, in the order of `getOperations`
        Counts& operator+=(const Counts& other);
    };

    /// The unit of class ANGLE for one of LONGITUDE or LATITUDE, which have classes of their own
    /// with the same keys; any other unit as it is. Nothing converts between classes.
    static HbuUnit toAngle(const HbuUnit& unit);

    /// Each system in its own unit. HbeUserError, with the text form of the system and PROJ's
    /// reason, for a system that is not valid, between a local system and one on Earth, and where
    /// PROJ knows no operation.
    KuuCoordSystemConverter(const KuuCoordSystem& from, const KuuCoordSystem& to);
    /// A unit that is not valid, or "none", stands for the system's own. HbeUserError also for a
    /// unit that measures neither lengths nor angles, or an angle unit of a projected system.
    KuuCoordSystemConverter(const KuuCoordSystem& from, const HbuUnit& fromUnit,
                            const KuuCoordSystem& to, const HbuUnit& toUnit);
    KuuCoordSystemConverter(const KuuCoordSystemConverter& other);
    KuuCoordSystemConverter& operator=(const KuuCoordSystemConverter& other);
    ~KuuCoordSystemConverter();

    /// Nothing changes, not even units.
    bool isIdentity() const;
    /// PROJ is asked, not only units changed.
    bool isReprojection() const;
    /// The operations, the most accurate first. A point takes the first one whose area holds it and
    /// whose files are there (on land, one for the land before one for the sea), as PROJ chooses.
    /// Empty without a reprojection.
    QVector<Operation> getOperations() const;
    /// The report for people: what will be done, how exactly, and where, with a line of warning for
    /// each ballpark operation and missing file; and what became of points.
    QString getReport() const;
    QString getReport(const Counts& counts) const;

    /// False, and no change, for a point that cannot be converted or is undefined. An undefined
    /// elevation stays so.
    bool convert(HbgVector2D& point) const;
    bool convert(HbgVector3D& point) const;
    bool convert(QPointF& point) const;
    /// What surely holds the images of all points of a rectangle or box whose image is defined
    /// (edges and interior are sampled); null or empty when no image is.
    QRectF convert(const QRectF& rectangle) const;
    HbgBox convert(const HbgBox& box) const;
    /// In place; `stride` is the distance, in doubles, from one coordinate to the next of its axis;
    /// `z` may be null. Long arrays are converted by as many threads as the machine has cores, at
    /// most `maxThreads` where that is above 0.
    Counts convert(double* x, double* y, double* z, qint64 count, qint64 stride = 1,
                   int maxThreads = 0) const;

    /// A distance, in the unit of the first system, in that of the second; D_FFFF where one
    /// measures lengths and the other angles: see the other form.
    double transformDistance(double distance) const;
    /// The same at a place of the first system: the mean of what the distance becomes to the east
    /// and to the north of it, in the plane of the coordinates. D_FFFF where the place has no
    /// image.
    double transformDistance(double distance, const QPointF& place) const;

    /// Queues what is to be converted in place in a long task; all is borrowed until
    /// `convertWanted`. Variables are real columns (HbdVariableReal) of one length, `z` may be
    /// null; others are a programming error. A copy of the converter copies the queue.
    void wantToConvert(double* x, double* y, double* z, qint64 count, qint64 stride = 1);
    void wantToConvert(HbgGeomPolygon& polygon);
    void wantToConvert(HbdAVariable& x, HbdAVariable& y, HbdAVariable* z = nullptr);
    /// Converts what is queued, as a part of `progress` that counts points, and empties the queue.
    /// HbcCancelled ends it between blocks, with part of the data converted: work on copies. A
    /// polygon with a corner that cannot be converted becomes empty, its corners are counted.
    Counts convertWanted(HbcAProgress& progress);

private:
    QString describeWork(const QVector<qint64>& points) const;

    struct Private;
    std::shared_ptr<const Private> d; // never changes
    struct Wanted {
        double* x;
        double* y;
        double* z;
        qint64 count;
        qint64 stride;
        HbgGeomPolygon* polygon; // instead of coordinates
    };
    std::vector<Wanted> m_wanted;
};
