#include <util/utils/KuuCoordSystemCatalogFile.h>

#include <basic/base/HbbDebug.h>
#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeError.h>
#include <util/xml/KuxXml.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtXml/QDomDocument>

#include <algorithm>
#include <limits>

using System = KuuCoordSystemCatalogFile::System;

namespace
{
const QString SHIPPED = QStringLiteral(":/kelvane/cs_catalog.xml");
const QString CATALOG = QStringLiteral("catalog");
const QString CS = QStringLiteral("cs");
const QString FAVORITES = QStringLiteral("favorites");
const QString GEOGRAPHIC = QStringLiteral("geographic");
const QString PROJECTED = QStringLiteral("projected");
const QString RANK = QStringLiteral("rank");
const QString VERSION_TAG = QStringLiteral("version");

QString tr(const char* text)
{
    return QCoreApplication::translate("KuuCoordSystemCatalog", text);
}

bool isForbiddenInXml(ushort c)
{
    return c < 0x20 || c >= 0xFFFE;
}

/// The fields of a `cs` element, tag to member: written and read in this order.
struct Field {
    QLatin1String tag;
    QString System::*member;
};
const Field FIELDS[] = {
    {QLatin1String("name"), &System::name},
    {QLatin1String("epsg"), &System::epsg},
    {QLatin1String("ignf"), &System::ignf},
    {QLatin1String("proj4"), &System::proj4},
};

/// Reads one document; `name` is the file in what is logged.
class Reader
{
public:
    Reader(const QString& name, KuuCoordSystemCatalogFile& file)
        : m_name(name)
        , m_file(file)
    {
    }

    void read(const QDomElement& root)
    {
        m_file.state = check(root);
        if (m_file.state != KuuCoordSystemCatalogFile::State::READ)
            return;
        for (QDomElement child = root.firstChildElement(); !child.isNull();
             child = child.nextSiblingElement()) {
            if (child.tagName() == CS)
                addSystem(readSystem(child));
            else if (child.tagName() == FAVORITES)
                readFavorites(child);
        }
    }

private:
    void log(const QString& message) const
    {
        HbbDebug::print(tr("Coordinate system catalog '%1': %2").arg(m_name, message));
    }

    KuuCoordSystemCatalogFile::State check(const QDomElement& root) const
    {
        if (root.tagName() != CATALOG) {
            log(tr("the document element is '%1', not '%2'.").arg(root.tagName(), CATALOG));
            return KuuCoordSystemCatalogFile::State::DAMAGED;
        }
        // A file that was created empty has no version, yet.
        const QDomElement version = root.firstChildElement(VERSION_TAG);
        if (!version.isNull() &&
            HbbGlobal::convertString(version.text(), 0) != KuuCoordSystemCatalogFile::VERSION) {
            log(tr("the version '%1' is not known.").arg(version.text()));
            return KuuCoordSystemCatalogFile::State::UNKNOWN;
        }
        return KuuCoordSystemCatalogFile::State::READ;
    }

    System readSystem(const QDomElement& element) const
    {
        System system;
        for (QDomElement child = element.firstChildElement(); !child.isNull();
             child = child.nextSiblingElement()) {
            for (const Field& field : FIELDS) {
                if (child.tagName() != field.tag)
                    continue;
                QString& value = system.*field.member;
                if (value.isEmpty())
                    value = KuuCoordSystemCatalogFile::toLine(child.text());
                else
                    log(tr("'%1' stands twice in coordinate system '%2' (the first one counts).")
                            .arg(field.tag, system.name));
            }
        }
        system.name = KuuCoordSystemCatalogFile::toName(system.name);
        return system;
    }

    void addSystem(const System& system)
    {
        if (system.epsg.isEmpty() && system.ignf.isEmpty() && system.proj4.isEmpty())
            log(tr("coordinate system '%1' has neither code nor definition (ignored).")
                    .arg(system.name));
        else
            m_file.systems.append(system);
    }

    void readFavorites(const QDomElement& element)
    {
        if (m_file.hasFavorites) {
            log(tr("the favorites stand twice (the first ones count)."));
            return;
        }
        m_file.hasFavorites = true;
        m_file.geographicFavorites = readRanked(element.firstChildElement(GEOGRAPHIC));
        m_file.projectedFavorites = readRanked(element.firstChildElement(PROJECTED));
    }

    /// In the order of the ranks; equal ones stay in the order of the file.
    QVector<System> readRanked(const QDomElement& list) const
    {
        constexpr qint64 NONE = std::numeric_limits<qint64>::min();
        QVector<System> systems;
        QVector<qint64> ranks;
        for (QDomElement child = list.firstChildElement(CS); !child.isNull();
             child = child.nextSiblingElement(CS)) {
            const QString text = child.attribute(RANK);
            const qint64 rank = HbbGlobal::convertString(text, NONE);
            if (rank == NONE) {
                log(tr("the rank '%1' of a favorite is no number (ignored).").arg(text));
                continue;
            }
            systems.append(readSystem(child));
            ranks.append(rank);
        }
        QVector<int> order(systems.size());
        for (int i = 0; i < order.size(); ++i)
            order[i] = i;
        std::stable_sort(order.begin(), order.end(),
                         [&ranks](int a, int b) { return ranks.at(a) < ranks.at(b); });
        QVector<System> sorted;
        sorted.reserve(order.size());
        for (const int i : order)
            sorted.append(systems.at(i));
        return sorted;
    }

    const QString m_name;
    KuuCoordSystemCatalogFile& m_file;
};

/// Reads what `load` puts into a document; no error leaves it.
template <class Load>
KuuCoordSystemCatalogFile readDocument(const QString& name, const Load& load)
{
    KuuCoordSystemCatalogFile file;
    try {
        QDomDocument document;
        load(document);
        Reader(name, file).read(document.documentElement());
    } catch (const HbeError& error) {
        file = KuuCoordSystemCatalogFile();
        file.state = KuuCoordSystemCatalogFile::State::DAMAGED;
        HbbDebug::printWarning(error.getMessage());
    }
    return file;
}

QDomElement createElement(QDomDocument& document, const System& system)
{
    QDomElement element = document.createElement(CS);
    for (const Field& field : FIELDS) {
        const QString& value = system.*field.member;
        if (!value.isEmpty())
            element.appendChild(KuxXml::createTextNode(document, field.tag, value));
    }
    return element;
}

QDomElement createList(QDomDocument& document, const QString& tag, const QVector<System>& systems)
{
    QDomElement list = document.createElement(tag);
    int rank = 0;
    for (const System& system : systems) {
        QDomElement element = createElement(document, system);
        element.setAttribute(RANK, rank++);
        list.appendChild(element);
    }
    return list;
}
} // namespace

bool System::operator==(const System& other) const
{
    return name == other.name && epsg == other.epsg && ignf == other.ignf && proj4 == other.proj4;
}

QString KuuCoordSystemCatalogFile::toLine(const QString& text)
{
    QString line = text.simplified();
    for (int i = 0; i < line.size(); ++i) {
        const bool isPair =
            line.at(i).isHighSurrogate() && i + 1 < line.size() && line.at(i + 1).isLowSurrogate();
        if (isPair)
            ++i;
        else if (line.at(i).isSurrogate() || isForbiddenInXml(line.at(i).unicode()))
            line[i] = QChar(QChar::ReplacementCharacter);
    }
    return line;
}

QString KuuCoordSystemCatalogFile::toName(const QString& name)
{
    const QString line = toLine(name);
    return line.isEmpty() ? QCoreApplication::translate("KuuCoordSystem", "unnamed") : line;
}

KuuCoordSystemCatalogFile KuuCoordSystemCatalogFile::read(const QString& path)
{
    if (!QFile::exists(path)) {
        HbbDebug::printWarning(tr("  XML file '%1' does not exist.").arg(path));
        return {};
    }
    return readDocument(path, [&path](QDomDocument& document) { KuxXml::readXml(path, document); });
}

KuuCoordSystemCatalogFile KuuCoordSystemCatalogFile::fromBytes(const QByteArray& bytes,
                                                               const QString& name)
{
    return readDocument(name,
                        [&](QDomDocument& document) { KuxXml::readXml(bytes, name, document); });
}

const KuuCoordSystemCatalogFile& KuuCoordSystemCatalogFile::getShipped()
{
    static const KuuCoordSystemCatalogFile file = read(SHIPPED);
    return file;
}

static QDomDocument toDocument(const KuuCoordSystemCatalogFile& file)
{
    QDomDocument document;
    QDomElement root = document.createElement(CATALOG);
    document.appendChild(root);
    root.appendChild(KuxXml::createTextNode(document, VERSION_TAG, QString::number(file.VERSION)));
    for (const System& system : file.systems)
        root.appendChild(createElement(document, system));
    if (file.hasFavorites) {
        QDomElement favorites = document.createElement(FAVORITES);
        favorites.appendChild(createList(document, GEOGRAPHIC, file.geographicFavorites));
        favorites.appendChild(createList(document, PROJECTED, file.projectedFavorites));
        root.appendChild(favorites);
    }
    return document;
}

void KuuCoordSystemCatalogFile::write(const QString& path) const
{
    KuxXml::saveXml(path, toDocument(*this));
}

QByteArray KuuCoordSystemCatalogFile::toBytes() const
{
    return toDocument(*this).toByteArray(KuxXml::getIndent());
}

void KuuCoordSystemCatalogFile::writeEmpty(const QString& path)
{
    QDomDocument document;
    document.appendChild(document.createElement(CATALOG));
    KuxXml::saveXml(path, document);
}
