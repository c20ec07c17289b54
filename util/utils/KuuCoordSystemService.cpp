#include <util/utils/KuuCoordSystemService.h>

#include "KuuCoordSystemProj.h"

#include <util/utils/KuuCoordSystem.h>

#include <basic/base/HbbGlobal.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QHash>
#include <QtCore/QLocale>
#include <QtCore/QPair>

#include <mutex>

using namespace KuuCoordSystemProj;

namespace
{

/// The unit of the first axis of a projected system; one that our table lacks is made here.
HbuUnit axisUnit(const PJ* crs)
{
    QString text;
    const double factor = axisFactor(crs, 0, &text);
    if (factor <= 0.)
        return {};
    const HbuUnit unit =
        HbuUnitService::getInstance().getUnitFromFactor(HbuEUnitClass::LENGTH, factor);
    if (unit.isValid())
        return unit;
    if (text == QLatin1String("unknown")) // "+to_meter=0.5"
        text = QString::number(factor, 'g', QLocale::FloatingPointShortest) + QLatin1String(" m");
    return {text,
            text,
            text,
            HbuEUnitClass::LENGTH,
            HbuEUnitSystem::OTHER,
            HbuUnitTransfo::linear(factor)};
}

KuuCoordSystemService::Description search(const QString& text)
{
    KuuCoordSystemService::Description description;
    PjPointer crs = createCrs(text);
    if (!crs)
        return description;
    // PROJ's answers live as long as its objects, so that they are copied first.
    const QString name = QString::fromUtf8(proj_get_name(crs.get()));
    const char* proj4 = proj_as_proj_string(context(), crs.get(), PJ_PROJ_4, nullptr);
    const KueProj4Definition definition(QString::fromUtf8(proj4));
    const PjPointer horizontal = horizontalPart(std::move(crs));
    if (!horizontal)
        return description;

    const bool isProjected = proj_get_type(horizontal.get()) == PJ_TYPE_PROJECTED_CRS;
    description.isKnown = true;
    description.name = name == QLatin1String("unknown") ? QString() : name;
    description.definition = definition;
    description.mode =
        isProjected ? Ku::CoordSystemMode::PROJECTED : Ku::CoordSystemMode::GEOGRAPHIC;
    description.unit = isProjected ? axisUnit(horizontal.get())
                                   : HbuUnitService::getInstance().getUnit(HbuEUnitClass::ANGLE,
                                                                           QStringLiteral("deg"));
    return description;
}

QString codeText(QLatin1String authority, const QString& code)
{
    return code.isEmpty() ? QString() : authority + QLatin1Char(':') + code;
}

/// Answers by question. Nobody asks about more than a few hundred systems; the limit only keeps a
/// file of nonsense from filling the memory.
template <class Key, class Value>
class Cache
{
public:
    template <class Search>
    Value get(const Key& key, const Search& searchValue)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            const auto known = m_values.constFind(key);
            if (known != m_values.constEnd())
                return *known;
        }
        const Value value = searchValue(); // unlocked: a search may take milliseconds
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_values.size() >= LIMIT)
            m_values.clear();
        m_values.insert(key, value);
        return value;
    }

private:
    static constexpr int LIMIT = 20000;
    std::mutex m_mutex;
    QHash<Key, Value> m_values;
};

} // namespace

struct KuuCoordSystemService::Private {
    Cache<QString, Description> descriptions;
    Cache<QPair<QString, QString>, bool> equivalences;
};

KuuCoordSystemService& KuuCoordSystemService::getInstance()
{
    static KuuCoordSystemService service;
    return service;
}

KuuCoordSystemService::KuuCoordSystemService()
    : d(std::make_unique<Private>())
{
}

KuuCoordSystemService::~KuuCoordSystemService() = default;

bool KuuCoordSystemService::init()
{
    return proj_context_get_database_path(context()) != nullptr;
}

KuuCoordSystemService::Description KuuCoordSystemService::describe(const QString& projText) const
{
    if (projText.isEmpty())
        return {};
    return d->descriptions.get(projText, [&projText] { return search(projText); });
}

KuuCoordSystemService::Description KuuCoordSystemService::describeEpsg(const QString& code) const
{
    return describe(codeText(EPSG, code));
}

KuuCoordSystemService::Description KuuCoordSystemService::describeIgnf(const QString& code) const
{
    return describe(codeText(IGNF, code));
}

KuuCoordSystemService::Description
KuuCoordSystemService::describeProj4(const KueProj4Definition& definition) const
{
    return definition.isValid() ? describe(definition.getText()) : Description();
}

KueProj4Definition KuuCoordSystemService::epsgDefinition(const QString& code) const
{
    return describeEpsg(code).definition;
}

KueProj4Definition KuuCoordSystemService::ignfDefinition(const QString& code) const
{
    return describeIgnf(code).definition;
}

KueProj4Definition
KuuCoordSystemService::expandDefinition(const KueProj4Definition& definition) const
{
    return describeProj4(definition).definition;
}

QString KuuCoordSystemService::extractNameFromEpsg(const QString& code) const
{
    return describeEpsg(code).name;
}

QString KuuCoordSystemService::extractNameFromIgnf(const QString& code) const
{
    return describeIgnf(code).name;
}

HbuUnit KuuCoordSystemService::extractUnit(const KueProj4Definition& definition) const
{
    return describeProj4(definition).unit;
}

Ku::CoordSystemMode
KuuCoordSystemService::getCoordSystemMode(const KueProj4Definition& definition) const
{
    return describeProj4(definition).mode;
}

QString KuuCoordSystemService::csToProj4String(const KuuCoordSystem& system) const
{
    // As validity does, the first reference that PROJ knows decides.
    if (describeIgnf(system.getIgnfCode()).isKnown)
        return codeText(IGNF, system.getIgnfCode());
    if (describeEpsg(system.getEpsgCode()).isKnown)
        return codeText(EPSG, system.getEpsgCode());
    if (describeProj4(system.getProj4()).isKnown)
        return system.getProj4().getText();
    return QString();
}

bool KuuCoordSystemService::areEquivalent(const KuuCoordSystem& a, const KuuCoordSystem& b) const
{
    const QString textA = csToProj4String(a);
    const QString textB = csToProj4String(b);
    if (textA.isEmpty() || textB.isEmpty())
        return false;
    return d->equivalences.get({textA, textB}, [&] {
        const PjPointer crsA = createCrs(textA);
        const PjPointer crsB = createCrs(textB);
        return crsA && crsB &&
               proj_is_equivalent_to_with_ctx(context(), crsA.get(), crsB.get(),
                                              PJ_COMP_EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS) != 0;
    });
}
