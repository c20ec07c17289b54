#include "ToolDatasetFacts.h"

#include "ToolCommand.h"
#include "ToolExtent.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolTable.h"
#include "ToolText.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/dataset/KudSelector.h>

#include <basic/data/HbdColumnSummary.h>
#include <basic/data/HbdEnumCatalog.h>
#include <basic/error/HbeUserError.h>

namespace
{
constexpr int SHOWN_CATEGORIES = 6;

QStringList labelsOf(const HbdEnumCatalog& catalog)
{
    QStringList labels;
    for (const HbdEnumCatalog::Category& category : catalog.getCategories())
        labels.append(category.label);
    return labels;
}

int countMasked(const KudADataset& dataset)
{
    const KudADataTable* table = dataset.getObjectTable();
    return table == nullptr ? 0 : table->getMaskConst()->getNSelected();
}

QString typeName(const HbdVariableDetails& details)
{
    return details.type.getKey().toLower();
}

/// Calls `visit(variable, details, summary, categories)` for each variable of each table.
template <class Visit>
void visitVariables(const KudADataset& dataset, Visit visit)
{
    for (int t = 0; t < dataset.getTableCount(); ++t) {
        const KudADataTable& table = *dataset.getTableAt(t);
        for (int column = 0; column < table.getVariableCount(); ++column) {
            const KudDatasetVariable variable = table.getVariableAt(column);
            const HbdAVariable* values = table.readValues(variable);
            if (values == nullptr)
                continue;
            visit(variable, table.getDetails(variable), HbdColumnSummary::of(*values),
                  labelsOf(table.getVariableCatalog(variable)));
        }
    }
}

void writeBox(ToolJson& json, const HbgBox& box)
{
    if (box.isEmpty()) {
        json.null();
        return;
    }
    json.beginObject();
    json.key("xMin").value(box.getXMin());
    json.key("xMax").value(box.getXMax());
    json.key("yMin").value(box.getYMin());
    json.key("yMax").value(box.getYMax());
    json.key("zMin").value(box.getZMin());
    json.key("zMax").value(box.getZMax());
    json.endObject();
}

QString rangeText(double minimum, double maximum)
{
    return Tool::tr("%1 to %2").arg(ToolOutput::toText(minimum), ToolOutput::toText(maximum));
}

QString withUnit(const QString& text, const HbuUnit& unit)
{
    return unit.isNone() ? text : text + QLatin1Char(' ') + unit.getSymbol();
}

QString boxText(const HbgBox& box, const HbuUnit& xUnit, const HbuUnit& yUnit,
                const HbuUnit& elevationUnit)
{
    if (box.isEmpty())
        return Tool::tr("no coordinates");
    QString text = Tool::tr("x %1, y %2")
                       .arg(withUnit(rangeText(box.getXMin(), box.getXMax()), xUnit),
                            withUnit(rangeText(box.getYMin(), box.getYMax()), yUnit));
    if (box.is3D())
        text += Tool::tr(", z %1").arg(
            withUnit(rangeText(box.getZMin(), box.getZMax()), elevationUnit));
    return text;
}

QString getKind(const KuuCoordSystem& system)
{
    return system.isGeographic()  ? Tool::tr("geographic")
           : system.isProjected() ? Tool::tr("projected")
                                  : Tool::tr("local");
}

/// The key of the kind, for programs.
QString kindKey(const KuuCoordSystem& system)
{
    return system.isGeographic()  ? QStringLiteral("GEOGRAPHIC")
           : system.isProjected() ? QStringLiteral("PROJECTED")
                                  : QStringLiteral("LOCAL");
}

QString coordSystemText(const KuuCoordSystem& system)
{
    const QString code = system.serialize();
    if (code.isEmpty() && !system.isLocal())
        return Tool::tr("none");
    QString text = code.isEmpty() ? Tool::tr("local") : code;
    if (!code.isEmpty() && !system.getName().isEmpty())
        text += QStringLiteral("  ") + system.getName();
    if (!system.isValid())
        return text + Tool::tr(" (not known here)");
    if (!code.isEmpty())
        text += Tool::tr(" (%1, in %2)").arg(getKind(system), system.getUnit().getSymbol());
    return text;
}

/// The extent in another system; empty where it cannot be told, with a warning where a system is
/// the reason.
HbgBox computeExtent(const KudADataset& dataset, const KuuCoordSystem& other)
{
    if (!dataset.getCoordSystem().isValid())
        return HbgBox();
    try {
        return ToolExtent::compute(dataset, other);
    } catch (const HbeUserError& error) {
        ToolOutput::printWarning(Tool::tr("'%1': %2").arg(dataset.getName(), error.getMessage()));
        return HbgBox();
    }
}

void writeExtent(ToolJson& json, const KudADataset& dataset, const KuuCoordSystem& other)
{
    json.beginObject();
    json.key("coordinateSystem").value(other.serialize());
    json.key("unit").value(other.getUnit().getSymbol());
    json.key("boundingBox");
    writeBox(json, computeExtent(dataset, other));
    json.endObject();
}

QString extentText(const KudADataset& dataset, const KuuCoordSystem& other)
{
    const HbgBox box = computeExtent(dataset, other);
    const QString text = box.isEmpty() ? Tool::tr("not known")
                                       : boxText(box, other.getUnit(), other.getUnit(), HbuUnit());
    return Tool::tr("\n  in %1 %2").arg(other.serialize().leftJustified(15), text);
}

QString categoriesText(const QStringList& categories)
{
    QString text = QStringList(categories.mid(0, SHOWN_CATEGORIES)).join(QStringLiteral(", "));
    if (categories.size() > SHOWN_CATEGORIES)
        text += Tool::tr(" and %1 more").arg(categories.size() - SHOWN_CATEGORIES);
    return text;
}

QString numberText(const QVariant& number)
{
    return number.userType() == QMetaType::LongLong
               ? number.toString()
               : ToolOutput::toText(number.isValid() ? number.toDouble() : HbbGlobal::D_FFFF);
}
} // namespace

void ToolDatasetFacts::write(ToolJson& json, const KudADataset& dataset,
                             const KuuCoordSystem& other)
{
    const KuuCoordSystem system = dataset.getCoordSystem();
    json.beginObject();
    json.key("name").value(dataset.getName());
    json.key("kind").value(dataset.getDatasetType().getKey());
    json.key("count").value(qint64(dataset.getObjectCount()));
    json.key("masked").value(qint64(countMasked(dataset)));
    json.key("coordinateSystem").textOrNull(system.serialize());
    json.key("coordinateSystemName").textOrNull(system.getName());
    json.key("coordinateSystemKind").textOrNull(system.isValid() ? kindKey(system) : QString());
    json.key("coordinateUnit").textOrNull(dataset.getCoordinateUnit().getSymbol());
    json.key("elevationUnit").textOrNull(dataset.getElevationUnit().getSymbol());
    json.key("boundingBox");
    writeBox(json, dataset.getBoundingBox());
    if (other.isValid()) {
        json.key("extent");
        writeExtent(json, dataset, other);
    }
    json.key("variables").beginArray();
    visitVariables(dataset, [&json](const KudDatasetVariable& variable,
                                    const HbdVariableDetails& details,
                                    const HbdColumnSummary& summary, const QStringList& labels) {
        json.beginObject();
        json.key("name").value(variable.getFullVariableName());
        json.key("type").value(typeName(details));
        json.key("role").textOrNull(details.role == HbdEVarRole::NONE ? QString()
                                                                      : details.role.getKey());
        json.key("unit").textOrNull(details.unit.getSymbol());
        json.key("displayUnit").textOrNull(details.displayUnit.getSymbol());
        json.key("defined").value(summary.defined);
        json.key("undefined").value(summary.undefined);
        json.key("minimum").number(summary.minimum);
        json.key("maximum").number(summary.maximum);
        json.key("mean").value(summary.mean);
        json.key("categories").value(labels);
        json.endObject();
    });
    json.endArray();
    json.endObject();
}

QString ToolDatasetFacts::toText(const KudADataset& dataset, const KuuCoordSystem& other)
{
    QString text = Tool::tr("%1: %2, %3 samples")
                       .arg(ToolText::makeVisible(dataset.getName()),
                            dataset.getDatasetType().getLabel().toLower(),
                            QString::number(dataset.getObjectCount()));
    text += Tool::tr("\n  coordinates        %1")
                .arg(boxText(dataset.getBoundingBox(), dataset.getCoordinateUnit(),
                             ToolExtent::getUnitOfY(dataset), dataset.getElevationUnit()));
    text += Tool::tr("\n  coordinate system  %1").arg(coordSystemText(dataset.getCoordSystem()));
    if (other.isValid())
        text += extentText(dataset, other);
    const int masked = countMasked(dataset);
    if (masked > 0)
        text += Tool::tr("\n  masked             %1 samples").arg(masked);
    text += QStringLiteral("\n\n");

    ToolTable table({Tool::tr("variable"), Tool::tr("type"), Tool::tr("role"), Tool::tr("unit"),
                     Tool::tr("shown in"), Tool::tr("defined"), Tool::tr("undefined"),
                     Tool::tr("minimum"), Tool::tr("maximum"), Tool::tr("mean"),
                     Tool::tr("categories")});
    table.alignRight(5, 9);
    visitVariables(dataset, [&table](const KudDatasetVariable& variable,
                                     const HbdVariableDetails& details,
                                     const HbdColumnSummary& summary, const QStringList& labels) {
        const bool plain = details.role == HbdEVarRole::NONE;
        table.addRow({variable.getFullVariableName(), typeName(details),
                      plain ? QString() : details.role.getLabel(), details.unit.getSymbol(),
                      details.displayUnit.getSymbol(), QString::number(summary.defined),
                      QString::number(summary.undefined), numberText(summary.minimum),
                      numberText(summary.maximum), ToolOutput::toText(summary.mean),
                      categoriesText(labels)});
    });
    return text + table.toText(2);
}
