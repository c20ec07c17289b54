#include <util/utils/KuuUnitCatalog.h>

#include <basic/base/HbbDebug.h>
#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeDiskError.h>
#include <util/system/KusFileUser.h>
#include <util/xml/KuxXml.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtXml/QDomDocument>

namespace
{
const QString FILE_NAME = QStringLiteral("unit_user.xml");
constexpr int FILE_VERSION = 2;
constexpr int DIGITS = 6; // a user's unit is defined at this precision

const QString CATALOG = QStringLiteral("catalog");
const QString VERSION = QStringLiteral("version");
const QString UNIT = QStringLiteral("unit");

const QString KEY = QStringLiteral("key");
const QString NAME = QStringLiteral("name");
const QString UNIT_CLASS = QStringLiteral("unitClass");
const QString UNIT_SYSTEM = QStringLiteral("unitSystem");
const QString SYMBOL = QStringLiteral("symbol");
const QString FACTOR = QStringLiteral("transfoFactor");
const QString SHIFT = QStringLiteral("transfoShift");

HbuUnitService& service()
{
    return HbuUnitService::getInstance();
}

/// The document element of a file of units; null when the file is missing or is none.
QDomElement readCatalog(const QString& path, QDomDocument& document)
{
    if (!QFileInfo(path).isFile()) // a pipe would be waited for
        return {};
    try {
        KuxXml::readXml(path, document);
    } catch (const HbeError&) {
        return {};
    }
    const QDomElement root = document.documentElement();
    return root.tagName() == CATALOG ? root : QDomElement();
}

/// 0 for a version that is missing or no number: such a file is read as an old one.
int versionOf(const QDomElement& catalog)
{
    return KuxXml::decodeInt(catalog.firstChildElement(VERSION).text(), 0);
}

/// Whoever edits the file by hand, or goes back to an older release for a day, must not lose it to
/// the next change of a unit.
void keepWhatIsNotUnderstood(const QString& path)
{
    QDomDocument document;
    const QDomElement catalog = readCatalog(path, document);
    const bool isUnderstood = !catalog.isNull() && versionOf(catalog) <= FILE_VERSION;
    if (isUnderstood || !QFileInfo(path).isFile())
        return;
    QString copy = path + QStringLiteral(".old");
    for (int i = 2; QFileInfo::exists(copy); ++i)
        copy = path + QStringLiteral(".old%1").arg(i);
    if (!QFile::copy(path, copy)) {
        throw HbeDiskError(
            KuuUnitCatalog::tr("Cannot copy the file of units '%1' to '%2'; it is not replaced.")
                .arg(path, copy));
    }
    HbbDebug::printWarning(
        KuuUnitCatalog::tr("The file of units '%1' could not be read whole; it is kept as '%2'.")
            .arg(path, copy));
}

/// Keys of earlier releases.
QString currentKey(const QString& key, int version)
{
    if (version > 1)
        return key;
    if (key == QLatin1String("SPECIFIC_ACTIVITY"))
        return HbuEUnitClass::ACTIVITY_CONCENTRATION.getKey();
    if (key == QLatin1String("SURFACE"))
        return HbuEUnitClass::AREA.getKey();
    return key;
}

QString toText(double number)
{
    return QString::number(number, 'g', DIGITS);
}
} // namespace

KuuUnitCatalog& KuuUnitCatalog::getInstance()
{
    static KuuUnitCatalog catalog;
    return catalog;
}

void KuuUnitCatalog::init()
{
    getInstance().load();
}

void KuuUnitCatalog::load()
{
    loadUserUnits(KusFileUser::getPath(FILE_NAME));
}

void KuuUnitCatalog::save()
{
    saveUserUnits(KusFileUser::createPath(FILE_NAME));
}

void KuuUnitCatalog::loadUserUnits(const QString& path)
{
    QDomDocument document;
    const QDomElement catalog = readCatalog(path, document);
    const int version = versionOf(catalog);
    for (QDomElement unit = catalog.firstChildElement(UNIT); !unit.isNull();
         unit = unit.nextSiblingElement(UNIT)) {
        Fields fields;
        for (QDomElement field = unit.firstChildElement(); !field.isNull();
             field = field.nextSiblingElement())
            fields.insert(field.tagName(), field.text());
        _loadUnit(fields, version);
    }
}

void KuuUnitCatalog::saveUserUnits(const QString& path)
{
    QDomDocument document;
    QDomElement catalog = document.createElement(CATALOG);
    document.appendChild(catalog);
    catalog.appendChild(KuxXml::createTextNode(document, VERSION, QString::number(FILE_VERSION)));
    for (const HbuUnit& unit : service().getUserUnits()) {
        if (isTemporary(unit.getKey()))
            continue;
        QDomElement element = document.createElement(UNIT);
        const Fields fields = _saveUnit(unit);
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            // CDATA for a text of blanks, which a reader would drop.
            element.appendChild(
                KuxXml::createTextOrCDATANode(document, field.key(), field.value()));
        }
        catalog.appendChild(element);
    }
    keepWhatIsNotUnderstood(path);
    KuxXml::saveXml(path, document);
}

HbuUnit KuuUnitCatalog::createUnit(const QString& name, const QString& symbol,
                                   const HbuEUnitClass& unitClass, const HbuEUnitSystem& unitSystem,
                                   const HbuUnitTransfo& transfo)
{
    const QString key = service().getUniqueKey(name);
    const HbuUnit unit =
        service().addUnit(HbuUnit(key, name, symbol, unitClass, unitSystem, transfo));
    if (unit.getTransfo().isValid()) {
        save();
        emit unitChanged();
    }
    return unit;
}

bool KuuUnitCatalog::updateUnit(const QString& key, const QString& name, const QString& symbol,
                                const HbuEUnitClass& unitClass, const HbuEUnitSystem& unitSystem,
                                const HbuUnitTransfo& transfo)
{
    if (!service().updateUnit(HbuUnit(key, name, symbol, unitClass, unitSystem, transfo)))
        return false;
    save();
    emit unitChanged();
    return true;
}

bool KuuUnitCatalog::deleteUnit(const QString& key)
{
    if (!service().removeUnit(key))
        return false;
    save();
    emit unitChanged();
    return true;
}

bool KuuUnitCatalog::isTemporary(const QString& key)
{
    return key.contains(QLatin1String("_tmpEditScaling")) ||
           key.contains(QLatin1String("_tmpDisplayScaling")) ||
           key.contains(QLatin1String("_tmpScaling"));
}

bool KuuUnitCatalog::_loadUnit(const Fields& fields, int version)
{
    if (isTemporary(fields.value(KEY)))
        return false;
    const QString key = currentKey(fields.value(KEY), version);
    const QString name = fields.value(NAME);
    const QString classKey = currentKey(fields.value(UNIT_CLASS), version);
    if (!HbuEUnitClass::existsKey(classKey))
        return false;
    const HbuEUnitClass unitClass = HbuEUnitClass::fromKey(classKey);
    if (service().getUnit(unitClass, key).getTransfo().isValid())
        return false;
    const QString systemKey = fields.value(UNIT_SYSTEM);
    if (!HbuEUnitSystem::existsKey(systemKey))
        return false;

    // Where there is no number, 0 or an undefined shift is no valid transformation.
    const double factor = HbbGlobal::convertString(fields.value(FACTOR), 0.);
    HbuUnitTransfo transfo = HbuUnitTransfo::linear(factor);
    const QString shift = fields.value(SHIFT);
    if (!shift.isEmpty()) {
        if (!service().acceptsAffine(unitClass)) {
            HbbDebug::print(
                QStringLiteral("KuuUnitCatalog: ignore unit %1 (%2): unit class %3 does not "
                               "accept a unit with an affine transformation")
                    .arg(key, name, classKey));
            return false;
        }
        transfo =
            HbuUnitTransfo::affine(factor, HbbGlobal::convertString(shift, HbbGlobal::D_FFFF));
    }
    return service()
        .addUnit(HbuUnit(key, name, fields.value(SYMBOL), unitClass,
                         HbuEUnitSystem::fromKey(systemKey), transfo))
        .isValid();
}

KuuUnitCatalog::Fields KuuUnitCatalog::_saveUnit(const HbuUnit& unit)
{
    const HbuUnitTransfo transfo = unit.getTransfo();
    Fields fields = {
        {KEY, unit.getKey()},
        {NAME, unit.getName()},
        {UNIT_CLASS, unit.getUnitClass().getKey()},
        {UNIT_SYSTEM, unit.getUnitSystem().getKey()},
        {SYMBOL, unit.getSymbol()},
        {FACTOR, toText(transfo.getFactor())},
    };
    if (transfo.isAffine())
        fields.insert(SHIFT, toText(transfo.getShift()));
    return fields;
}
