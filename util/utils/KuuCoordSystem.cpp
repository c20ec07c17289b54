#include <util/utils/KuuCoordSystem.h>

#include <util/utils/KuuCoordSystemService.h>

#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

static const QLatin1String IGNF_PREFIX("IGNF:");
static const QLatin1String EPSG_PREFIX("EPSG:");
static const QLatin1String PROJ4_PREFIX("PROJ4:");

/// A name for a system that nobody named.
static QString fallbackName(const QString& serialized)
{
    return serialized.isEmpty() || serialized.startsWith(PROJ4_PREFIX)
               ? QCoreApplication::translate("KuuCoordSystem", "unnamed")
               : serialized;
}

KuuCoordSystem KuuCoordSystem::createFromFields(const QString& name, const QString& epsgCode,
                                                const QString& ignfCode,
                                                const KueProj4Definition& definition)
{
    const KuuCoordSystemService& service = KuuCoordSystemService::getInstance();
    KuuCoordSystemService::Description description = service.describeIgnf(ignfCode);
    if (!description.isKnown)
        description = service.describeEpsg(epsgCode);
    if (!description.isKnown)
        description = service.describeProj4(definition);

    KuuCoordSystem system;
    system.m_epsgCode = epsgCode;
    system.m_ignfCode = ignfCode;
    system.m_proj4 = definition.isEmpty() ? description.definition : definition;
    system.m_mode = description.mode;
    system.m_unit = description.unit;
    system.m_isValid = description.isKnown;
    system.m_name = name.isEmpty() ? description.name : name;
    if (system.m_name.isEmpty())
        system.m_name = fallbackName(system.serialize());
    return system;
}

KuuCoordSystem KuuCoordSystem::createFromEpsg(const QString& code, const QString& name)
{
    return createFromFields(name, code, QString(), KueProj4Definition());
}

KuuCoordSystem KuuCoordSystem::createFromIgnf(const QString& code, const QString& name)
{
    return createFromFields(name, QString(), code, KueProj4Definition());
}

KuuCoordSystem KuuCoordSystem::createFromProj4(const KueProj4Definition& definition,
                                               const QString& name)
{
    return createFromFields(name, QString(), QString(), definition);
}

KuuCoordSystem KuuCoordSystem::createLocal(const HbuUnit& unit)
{
    const bool isLength = unit.isValid() && unit.getUnitClass() == HbuEUnitClass::LENGTH;
    KuuCoordSystem system;
    system.m_name = tr("Local");
    system.m_unit =
        isLength ? unit : HbuUnitService::getInstance().getReferenceUnit(HbuEUnitClass::LENGTH);
    system.m_isValid = true;
    return system;
}

QString KuuCoordSystem::serialize() const
{
    if (hasIgnfCode())
        return IGNF_PREFIX + m_ignfCode;
    if (hasEpsgCode())
        return EPSG_PREFIX + m_epsgCode;
    if (hasProj4())
        return PROJ4_PREFIX + m_proj4.getText();
    return QString();
}

KuuCoordSystem KuuCoordSystem::unserialize(const QString& text)
{
    const auto rest = [&text](QLatin1String prefix) { return text.mid(prefix.size()); };
    KuuCoordSystem system;
    if (text.startsWith(IGNF_PREFIX))
        system = createFromIgnf(rest(IGNF_PREFIX));
    else if (text.startsWith(EPSG_PREFIX))
        system = createFromEpsg(rest(EPSG_PREFIX));
    else if (text.startsWith(PROJ4_PREFIX))
        system = createFromProj4(KueProj4Definition(rest(PROJ4_PREFIX)));
    return system.serialize().isEmpty() ? KuuCoordSystem() : system;
}

KuuCoordSystem KuuCoordSystem::fromUserText(const QString& text)
{
    const KuuCoordSystem system = unserialize(text);
    if (!system.isValid())
        throw HbeUserError(tr("Unknown coordinate system: \"%1\".").arg(text));
    return system;
}

bool KuuCoordSystem::isSameEntity(const KuuCoordSystem& other) const
{
    if (hasEpsgCode() || hasIgnfCode() || other.hasEpsgCode() || other.hasIgnfCode())
        return m_epsgCode == other.m_epsgCode && m_ignfCode == other.m_ignfCode;
    if (hasProj4() || other.hasProj4())
        return m_proj4 == other.m_proj4;
    return isLocal() == other.isLocal();
}

bool KuuCoordSystem::isSameTransfo(const KuuCoordSystem& other) const
{
    const bool sharesCode = (hasEpsgCode() && m_epsgCode == other.m_epsgCode) ||
                            (hasIgnfCode() && m_ignfCode == other.m_ignfCode);
    if (sharesCode || isSameEntity(other))
        return true;
    const bool hasReference = !serialize().isEmpty();
    const bool otherHasReference = !other.serialize().isEmpty();
    if (!hasReference || !otherHasReference)
        return hasReference == otherHasReference;
    return KuuCoordSystemService::getInstance().areEquivalent(*this, other);
}

HbuUnitTransfo KuuCoordSystem::getConvertToTransfo(const HbuUnit& unit) const
{
    return HbuUnitService::getInstance().getConversion(m_unit, unit);
}

HbuUnitTransfo KuuCoordSystem::getConvertFromTransfo(const HbuUnit& unit) const
{
    return HbuUnitService::getInstance().getConversion(unit, m_unit);
}

bool KuuCoordSystem::operator==(const KuuCoordSystem& other) const
{
    return m_name == other.m_name && m_epsgCode == other.m_epsgCode &&
           m_ignfCode == other.m_ignfCode && m_proj4 == other.m_proj4 && m_mode == other.m_mode &&
           m_unit == other.m_unit && m_isValid == other.m_isValid;
}
