#include "KuuCoordSystemConverterPrivate.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>

using Operation = KuuCoordSystemConverter::Operation;

namespace
{
constexpr int MAX_LINES = 8; // of one kind
constexpr int MAX_NAME = 100;

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
        lines += KuuCoordSystemConverter::tr("(%1 more)").arg(more.size() - MAX_LINES);
}

QStringList describeOperations(const QVector<Operation>& operations)
{
    QStringList usable;
    QStringList lacking;
    QStringList ballpark;
    for (const Operation& operation : operations) {
        const QString name = shortened(operation.name);
        const QString accuracy = describeAccuracy(operation.accuracy);
        if (!operation.grids.isEmpty()) {
            lacking += KuuCoordSystemConverter::tr("Warning: \"%1\" (%2) would be preferred in "
                                                   "its area of use, %3, but a file is missing: %4")
                           .arg(name, accuracy, describeArea(operation),
                                operation.grids.join(QStringLiteral(", ")));
            continue;
        }
        usable += KuuCoordSystemConverter::tr("Operation: %1 (%2)\nArea of use: %3")
                      .arg(name, accuracy, describeArea(operation));
        if (operation.isBallpark) {
            ballpark += KuuCoordSystemConverter::tr(
                            "Warning: \"%1\" leaves the change of datum out: where it is used, "
                            "results may be wrong by tens or hundreds of metres.")
                            .arg(name);
        }
    }
    QStringList lines;
    if (usable.size() > 1) {
        lines += KuuCoordSystemConverter::tr("%1 operations; each point takes the first one whose "
                                             "area of use holds it.")
                     .arg(usable.size());
    }
    appendSome(lines, usable);
    appendSome(lines, ballpark);
    appendSome(lines, lacking);
    return lines;
}
} // namespace

QString KuuCoordSystemConverter::getReport() const
{
    QStringList lines{tr("From %1").arg(describe(d->from, d->fromUnit)),
                      tr("To %1").arg(describe(d->to, d->toUnit))};
    if (isIdentity())
        lines += tr("Nothing changes.");
    else if (!isReprojection())
        lines += tr("Only units change.");
    else
        lines += describeOperations(getOperations());
    return lines.join(QLatin1Char('\n'));
}

QString KuuCoordSystemConverter::getReport(const Counts& counts) const
{
    QStringList lines{getReport(), tr("%1 points converted").arg(counts.converted)};
    if (isReprojection() && counts.converted > 0)
        lines.last() += QStringLiteral(", ") + describeAccuracy(counts.worstAccuracy);
    if (counts.failed > 0)
        lines += tr("Warning: %1 points could not be converted.").arg(counts.failed);
    if (counts.undefined > 0)
        lines += tr("%1 points were undefined.").arg(counts.undefined);
    if (counts.outside > 0) {
        lines += tr("Warning: %1 of the converted points are outside of the area of use of one of "
                    "the systems.")
                     .arg(counts.outside);
    }
    if (counts.ballpark > 0) {
        lines += tr("Warning: %1 points were converted without the change of datum.")
                     .arg(counts.ballpark);
    }
    return lines.join(QLatin1Char('\n'));
}
