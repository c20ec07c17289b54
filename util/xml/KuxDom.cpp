#include <util/xml/KuxDom.h>

#include "KuxXmlText.h"

#include <basic/error/HbeError.h>
#include <util/system/KusSerializer.h>
#include <util/xml/KuxXml.h>

#include <QtCore/QFileInfo>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <algorithm>

namespace
{
QStringList stepsOf(const QString& path)
{
    QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (QString& name : names) {
        name = KuxXmlText::encodeName(name);
    }
    return names;
}

QVariant valueOf(const QDomElement& element)
{
    return KusSerializer::unserialize(KuxXml::getValue(element));
}

QVariantMap mapOf(const QDomElement& element)
{
    QVariantMap map;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        map.insert(KuxXmlText::decodeName(child.tagName()), valueOf(child));
    }
    return map;
}

// Equal in value and in type: 1 and "1" are equal variants, yet not the same text.
QString textOf(const QVariant& value)
{
    return KusSerializer::serialize(value);
}

QStringList textsOf(const QVariantMap& map)
{
    QStringList texts;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        texts << it.key() << textOf(it.value());
    }
    return texts;
}

QDateTime modificationTime(const QString& path)
{
    // A fresh look each time: the file is replaced under this name.
    return QFileInfo(path).lastModified();
}
} // namespace

KuxDom::KuxDom(const QString& rootName, const QString& filePath)
    : m_rootName(rootName)
    , m_filePath(filePath)
{
}

void KuxDom::load(const QString& path, bool create)
{
    if (!path.isEmpty()) {
        m_filePath = path;
    }
    m_document.clear();
    if (!QFileInfo::exists(m_filePath)) {
        if (create) {
            m_document.appendChild(m_document.createElement(m_rootName));
            save();
        }
        return;
    }

    // The time first: a change during the read shows as one later.
    const QDateTime time = modificationTime(m_filePath);
    QDomDocument document;
    KuxXml::readXml(m_filePath, document);
    if (document.documentElement().tagName() != m_rootName) {
        throw HbeError(
            QObject::tr("DOM document load from XML file '%1' is not valid.").arg(m_filePath));
    }
    m_document = document;
    m_lastModified = time;
}

void KuxDom::save()
{
    if (!isValid()) {
        return;
    }
    KuxXml::saveXml(m_filePath, m_document);
    m_lastModified = modificationTime(m_filePath);
}

bool KuxDom::isValid() const
{
    const QDomElement root = m_document.documentElement();
    return !root.isNull() && root.tagName() == m_rootName;
}

bool KuxDom::isModifiedOnDisk() const
{
    const QDateTime time = modificationTime(m_filePath);
    return time.isValid() && (!m_lastModified.isValid() || time > m_lastModified);
}

void KuxDom::changed()
{
    if (m_autosave) {
        save();
    }
}

// Null when a step is missing, or the path is empty.
QDomElement KuxDom::find(const QString& path) const
{
    const QStringList steps = stepsOf(path);
    QDomElement element = steps.isEmpty() ? QDomElement() : m_document.documentElement();
    for (const QString& step : steps) {
        element = element.lastChildElement(step);
    }
    return element;
}

QDomElement KuxDom::findOrCreate(const QString& path)
{
    QDomElement element = m_document.documentElement();
    const QStringList steps = stepsOf(path);
    for (const QString& step : steps) {
        QDomElement child = element.lastChildElement(step);
        if (child.isNull()) {
            child = element.appendChild(m_document.createElement(step)).toElement();
        }
        element = child;
    }
    return element;
}

QVariant KuxDom::get(const QString& path, const QVariant& defaultValue) const
{
    const QDomElement element = find(path);
    return element.isNull() ? defaultValue : valueOf(element);
}

bool KuxDom::set(const QString& path, const QVariant& value)
{
    if (!isValid() || stepsOf(path).isEmpty()) {
        return false;
    }
    const QString text = textOf(value);
    if (KuxXml::getValue(find(path)) == text) {
        return false;
    }
    QDomElement element = findOrCreate(path);
    element.removeChild(element.firstChild());
    if (!text.isEmpty()) {
        // In first place, which is where the value is read.
        element.insertBefore(m_document.createTextNode(text), QDomNode());
    }
    changed();
    return true;
}

void KuxDom::removeChildren(QDomElement parent, const QString& tag)
{
    QDomElement child = parent.firstChildElement(tag);
    while (!child.isNull()) {
        const QDomElement next = child.nextSiblingElement(tag);
        parent.removeChild(child);
        child = next;
    }
}

QVariantList KuxDom::getList(const QString& path, const QString& itemTag) const
{
    QVariantList values;
    const QString tag = KuxXmlText::encodeName(itemTag);
    for (QDomElement item = find(path).firstChildElement(tag); !item.isNull();
         item = item.nextSiblingElement(tag)) {
        values.append(valueOf(item));
    }
    return values;
}

bool KuxDom::setList(const QString& path, const QString& itemTag, const QVariantList& values)
{
    if (!isValid() || stepsOf(path).isEmpty()) {
        return false;
    }
    const QVariantList stored = getList(path, itemTag);
    const auto same = [](const QVariant& a, const QVariant& b) { return textOf(a) == textOf(b); };
    if (std::equal(values.begin(), values.end(), stored.begin(), stored.end(), same)) {
        return false;
    }
    QDomElement parent = findOrCreate(path);
    const QString tag = KuxXmlText::encodeName(itemTag);
    removeChildren(parent, tag);
    for (const QVariant& value : values) {
        parent.appendChild(KuxXml::createTextNode(m_document, tag, textOf(value)));
    }
    changed();
    return true;
}

void KuxDom::appendMap(QDomElement parent, const QVariantMap& values)
{
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (!it.key().isEmpty()) {
            const QString tag = KuxXmlText::encodeName(it.key());
            parent.appendChild(KuxXml::createTextNode(m_document, tag, textOf(it.value())));
        }
    }
}

QVariantMap KuxDom::getMap(const QString& path) const
{
    return mapOf(find(path));
}

bool KuxDom::setMap(const QString& path, const QVariantMap& values)
{
    QVariantMap kept = values;
    kept.remove(QString());
    if (!isValid() || stepsOf(path).isEmpty() || textsOf(getMap(path)) == textsOf(kept)) {
        return false;
    }
    QDomElement parent = findOrCreate(path);
    removeChildren(parent, QString());
    appendMap(parent, kept);
    changed();
    return true;
}

QList<QVariantMap> KuxDom::getMapList(const QString& path, const QString& itemTag) const
{
    QList<QVariantMap> maps;
    const QString tag = KuxXmlText::encodeName(itemTag);
    for (QDomElement item = find(path).firstChildElement(tag); !item.isNull();
         item = item.nextSiblingElement(tag)) {
        maps.append(mapOf(item));
    }
    return maps;
}

bool KuxDom::setMapList(const QString& path, const QString& itemTag,
                        const QList<QVariantMap>& values)
{
    if (!isValid() || stepsOf(path).isEmpty()) {
        return false;
    }
    const auto same = [](const QVariantMap& a, const QVariantMap& b) {
        return textsOf(a) == textsOf(b);
    };
    const QList<QVariantMap> stored = getMapList(path, itemTag);
    if (std::equal(values.begin(), values.end(), stored.begin(), stored.end(), same)) {
        return false;
    }
    QDomElement parent = findOrCreate(path);
    const QString tag = KuxXmlText::encodeName(itemTag);
    removeChildren(parent, tag);
    for (const QVariantMap& map : values) {
        appendMap(parent.appendChild(m_document.createElement(tag)).toElement(), map);
    }
    changed();
    return true;
}

bool KuxDom::removeElement(const QString& path)
{
    QDomElement element = find(path);
    if (element.isNull()) {
        return false;
    }
    element.parentNode().removeChild(element);
    changed();
    return true;
}

QString KuxDom::toString() const
{
    return m_document.toString(KuxXml::getIndent());
}
