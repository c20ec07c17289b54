#include "ToolCsFacts.h"

#include "ToolCommand.h"
#include "ToolJson.h"
#include "ToolOutput.h"

#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuCoordSystemDetails.h>

#include <basic/base/HbbStringFormat.h>

#include <QtCore/QStringList>

namespace
{
using Details = KuuCoordSystemDetails;

QString kindText(Ku::CoordSystemKind kind)
{
    switch (kind) {
    case Ku::CoordSystemKind::GEOGRAPHIC_2D:
        return Tool::tr("geographic");
    case Ku::CoordSystemKind::GEOGRAPHIC_3D:
        return Tool::tr("geographic, with heights");
    case Ku::CoordSystemKind::PROJECTED:
        return Tool::tr("projected");
    case Ku::CoordSystemKind::COMPOUND:
        return Tool::tr("compound, with heights");
    case Ku::CoordSystemKind::UNKNOWN:
        break;
    }
    return QString();
}

/// For programs.
QString kindKey(Ku::CoordSystemKind kind)
{
    switch (kind) {
    case Ku::CoordSystemKind::GEOGRAPHIC_2D:
        return QStringLiteral("geographic2D");
    case Ku::CoordSystemKind::GEOGRAPHIC_3D:
        return QStringLiteral("geographic3D");
    case Ku::CoordSystemKind::PROJECTED:
        return QStringLiteral("projected");
    case Ku::CoordSystemKind::COMPOUND:
        return QStringLiteral("compound");
    case Ku::CoordSystemKind::UNKNOWN:
        break;
    }
    return QString();
}

QString number(double value)
{
    return QString::fromLatin1(
        HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::GENERAL, 12));
}

/// Rows of a title and a text; a row without text is left out.
class Page
{
public:
    void add(const QString& title, const QString& text)
    {
        if (!text.isEmpty())
            m_text += QStringLiteral("  %1  %2\n").arg(title.leftJustified(WIDTH), text);
    }
    void addOthers(const QString& title, const QVector<Details::Other>& others)
    {
        QString rowTitle = title;
        for (const Details::Other& other : others) {
            add(rowTitle, QStringLiteral("%1  %2").arg(other.text, other.name));
            rowTitle.clear();
        }
    }
    const QString& getText() const { return m_text; }

private:
    static constexpr int WIDTH = 14;
    QString m_text;
};

QString axesText(const QVector<Details::Axis>& axes)
{
    QStringList texts;
    for (const Details::Axis& axis : axes)
        texts.append(Tool::tr("%1 (%2, %3)").arg(axis.name, axis.direction, axis.unit));
    return texts.join(QStringLiteral(", "));
}

QString ellipsoidText(const Details& details)
{
    if (details.ellipsoid.isEmpty())
        return QString();
    return Tool::tr("%1, semi-major axis %2 m, inverse flattening %3")
        .arg(details.ellipsoid, number(details.semiMajorAxis), number(details.inverseFlattening));
}

QString meridianText(const Details& details)
{
    if (details.primeMeridianLongitude == 0.)
        return details.primeMeridian;
    return Tool::tr("%1, %2\u00b0 east of Greenwich")
        .arg(details.primeMeridian, number(details.primeMeridianLongitude));
}

QString boxText(const KuuCoordSystemArea& area)
{
    if (!area.isValid)
        return QString();
    return Tool::tr("longitude %1 to %2, latitude %3 to %4")
        .arg(number(area.west), number(area.east), number(area.south), number(area.north));
}

void writeOthers(ToolJson& json, const QVector<Details::Other>& others)
{
    json.beginArray();
    for (const Details::Other& other : others) {
        json.beginObject();
        json.key("coordinateSystem").value(other.text);
        json.key("name").value(other.name);
        json.endObject();
    }
    json.endArray();
}

void writeAxes(ToolJson& json, const QVector<Details::Axis>& axes)
{
    json.beginArray();
    for (const Details::Axis& axis : axes) {
        json.beginObject();
        json.key("name").value(axis.name);
        json.key("abbreviation").value(axis.abbreviation);
        json.key("direction").value(axis.direction);
        json.key("unit").value(axis.unit);
        json.endObject();
    }
    json.endArray();
}

void writeDatum(ToolJson& json, const Details& details)
{
    json.key("datum").textOrNull(details.datum);
    json.key("ellipsoid").beginObject();
    json.key("name").textOrNull(details.ellipsoid);
    json.key("semiMajorAxis").value(details.semiMajorAxis);
    json.key("inverseFlattening").value(details.inverseFlattening);
    json.endObject();
    json.key("primeMeridian").beginObject();
    json.key("name").textOrNull(details.primeMeridian);
    json.key("longitude").value(details.primeMeridianLongitude);
    json.endObject();
}
} // namespace

QString ToolCsFacts::toText(const KuuCoordSystem& system)
{
    const Details details = Details::of(system);
    Page page;
    QStringList kind{kindText(details.kind), details.method};
    kind.append(details.isDeprecated ? Tool::tr("deprecated") : QString());
    kind.removeAll(QString());
    page.add(Tool::tr("kind"), kind.join(QStringLiteral(", ")));
    page.add(Tool::tr("unit"), system.getUnit().getName());
    page.add(Tool::tr("axes"), axesText(details.axes));
    page.add(Tool::tr("datum"), details.datum);
    page.add(Tool::tr("ellipsoid"), ellipsoidText(details));
    page.add(Tool::tr("prime meridian"), meridianText(details));
    page.add(Tool::tr("area of use"), details.area.name);
    page.add(details.area.name.isEmpty() ? Tool::tr("area of use") : QString(),
             boxText(details.area));
    page.add(Tool::tr("scope"), details.scope);
    page.add(Tool::tr("PROJ.4"), details.proj4);
    page.addOthers(Tool::tr("same as"), Details::findEquivalents(system));
    page.addOthers(Tool::tr("replaced by"), details.replacements);
    return QStringLiteral("%1  %2\n").arg(system.serialize(), details.name) + page.getText();
}

void ToolCsFacts::write(ToolJson& json, const KuuCoordSystem& system)
{
    const Details details = Details::of(system);
    json.beginObject();
    json.key("coordinateSystem").value(system.serialize());
    json.key("name").value(details.name);
    json.key("kind").textOrNull(kindKey(details.kind));
    json.key("method").textOrNull(details.method);
    json.key("unit").value(system.getUnit().getKey());
    writeAxes(json.key("axes"), details.axes);
    writeDatum(json, details);
    write(json.key("area"), details.area);
    json.key("scope").textOrNull(details.scope);
    json.key("proj4").textOrNull(details.proj4);
    json.key("wkt2").textOrNull(details.wkt2);
    writeOthers(json.key("equivalents"), Details::findEquivalents(system));
    json.key("deprecated").value(details.isDeprecated);
    writeOthers(json.key("replacements"), details.replacements);
    json.endObject();
}

void ToolCsFacts::write(ToolJson& json, const KuuCoordSystemArea& area)
{
    if (!area.isValid) {
        json.null();
        return;
    }
    json.beginObject();
    json.key("name").textOrNull(area.name);
    json.key("west").value(area.west);
    json.key("south").value(area.south);
    json.key("east").value(area.east);
    json.key("north").value(area.north);
    json.endObject();
}
