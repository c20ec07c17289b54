#include "KuuCoordSystemConverterPrivate.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>

using Counts = KuuCoordSystemConverter::Counts;
using Operation = KuuCoordSystemConverter::Operation;

namespace
{
constexpr int MAX_LINES = 5; // of one kind
constexpr int MAX_NAME = 160;

QString toText(double value)
{
    return QString::fromLatin1(
        HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::GENERAL, 6));
}

QString describe(const KuuCoordSystem& system, const HbuUnit& unit)
{
    const QString text = system.serialize();
    const bool isNamed = !text.isEmpty() && system.getName() != text;
    const QString name =
        isNamed ? QStringLiteral("%1 (%2)").arg(text, system.getName()) : system.getName();
    return KuuCoordSystemConverter::tr("%1 in %2").arg(name, unit.getSymbol());
}

QString describeAccuracy(double accuracy)
{
    if (accuracy == HbbGlobal::D_FFFF)
        return KuuCoordSystemConverter::tr("accuracy unknown");
    if (accuracy == 0.)
        return KuuCoordSystemConverter::tr("no change of datum");
    return KuuCoordSystemConverter::tr("accuracy %1 m").arg(toText(accuracy));
}

QString shortened(const QString& name)
{
    return name.size() <= MAX_NAME ? name : name.left(MAX_NAME) + QStringLiteral("\u2026");
}

QString describeArea(const Operation& operation)
{
    if (operation.area.isNull())
        return KuuCoordSystemConverter::tr("not stated");
    const QRectF& area = operation.area;
    const QString box = KuuCoordSystemConverter::tr("%1 to %2 E, %3 to %4 N")
                            .arg(toText(area.left()), toText(area.right()), toText(area.top()),
                                 toText(area.bottom()));
    const QString name = shortened(operation.areaName);
    return name.isEmpty() ? box : QStringLiteral("%1 (%2)").arg(name, box);
}

/// The first lines, and how many more there are.
void appendSome(QStringList& lines, const QStringList& more)
{
    lines += more.mid(0, MAX_LINES);
    if (more.size() > MAX_LINES)
        lines += KuuCoordSystemConverter::tr("(and %1 more)").arg(more.size() - MAX_LINES);
}

QString describeUse(const Operation& operation)
{
    return KuuCoordSystemConverter::tr("Operation: %1 (%2)\nArea of use: %3")
        .arg(shortened(operation.name), describeAccuracy(operation.accuracy),
             describeArea(operation));
}

QString warnOfFiles(const Operation& operation)
{
    return KuuCoordSystemConverter::tr("Warning: \"%1\" (%2) would be preferred in its area of "
                                       "use, %3, but it lacks the file %4.")
        .arg(shortened(operation.name), describeAccuracy(operation.accuracy),
             describeArea(operation), operation.grids.join(QStringLiteral(", ")));
}

QString warnOfBallpark(const Operation& operation)
{
    return KuuCoordSystemConverter::tr("Warning: \"%1\" leaves a change of datum out: where it is "
                                       "used, results may be wrong by tens or hundreds of metres.")
        .arg(shortened(operation.name));
}

QString warnOfSilence(const Operation& operation)
{
    return KuuCoordSystemConverter::tr("Warning: nobody states how exact \"%1\" is; metres are "
                                       "possible.")
        .arg(shortened(operation.name));
}

/// Only those that were used where `points` is not empty.
QStringList describeOperations(const QVector<Operation>& operations, const QVector<qint64>& points)
{
    QStringList usable;
    QStringList lacking;
    QStringList doubtful;
    for (int i = 0; i < operations.size(); ++i) {
        const Operation& operation = operations.at(i);
        if (!operation.grids.isEmpty()) {
            lacking += warnOfFiles(operation);
            continue;
        }
        if (points.value(i, points.isEmpty() ? 1 : 0) == 0)
            continue;
        usable += describeUse(operation);
        if (!points.isEmpty() && points.at(i) != 0)
            usable.last() += KuuCoordSystemConverter::tr("\nPoints: %1").arg(points.at(i));
        if (operation.isBallpark)
            doubtful += warnOfBallpark(operation);
        else if (operation.accuracy == HbbGlobal::D_FFFF)
            doubtful += warnOfSilence(operation);
    }
    QStringList lines;
    if (usable.size() > 1 && points.isEmpty()) {
        lines += KuuCoordSystemConverter::tr("%1 operations; each point takes the most accurate "
                                             "one whose area of use holds it.")
                     .arg(usable.size());
    }
    appendSome(lines, usable);
    appendSome(lines, doubtful);
    appendSome(lines, lacking);
    return lines;
}

QString describePoints(const Counts& counts, bool isReprojection)
{
    using C = KuuCoordSystemConverter;
    QStringList lines{C::tr("Converted: %1").arg(counts.converted)};
    if (isReprojection && counts.converted > 0)
        lines.last() += QStringLiteral(" (%1)").arg(describeAccuracy(counts.worstAccuracy));
    if (counts.undefined > 0)
        lines += C::tr("Undefined before: %1").arg(counts.undefined);
    if (counts.failed > 0)
        lines += C::tr("Warning: not convertible, undefined now: %1").arg(counts.failed);
    if (counts.outside > 0) {
        lines += C::tr("Warning: outside of the area of use of one of the systems: %1")
                     .arg(counts.outside);
    }
    if (counts.ballpark > 0)
        lines += C::tr("Warning: converted without a change of datum: %1").arg(counts.ballpark);
    return lines.join(QLatin1Char('\n'));
}
} // namespace

QString KuuCoordSystemConverter::describeWork(const QVector<qint64>& points) const
{
    QStringList lines{tr("From: %1").arg(describe(d->from, d->fromUnit)),
                      tr("To: %1").arg(describe(d->to, d->toUnit))};
    if (isIdentity())
        lines += tr("Nothing changes.");
    else if (!isReprojection())
        lines += tr("Only units change.");
    else
        lines += describeOperations(getOperations(), points);
    return lines.join(QLatin1Char('\n'));
}

QString KuuCoordSystemConverter::getReport() const
{
    return describeWork({});
}

QString KuuCoordSystemConverter::getReport(const Counts& counts) const
{
    return describeWork(counts.byOperation) + QLatin1Char('\n') +
           describePoints(counts, isReprojection());
}
