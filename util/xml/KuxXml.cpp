#include <util/xml/KuxXml.h>

#include "KuxXmlFile.h"
#include "KuxXmlGuard.h"
#include "KuxXmlText.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbOrderedMap.h>
#include <util/utils/KuuMementoCodec.h>

#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>
#include <QtXml/QDomDocument>

namespace
{
void parse(const char* bytes, qint64 size, const QString& name, QDomDocument& document)
{
    document.clear();
    QString fault;
    int line = 0;
    int column = 0;
    const QString text = KuxXmlGuard(bytes, size, name).getText();
    if (!document.setContent(text, true, &fault, &line, &column)) {
        document.clear();
        KuxXmlGuard::raise(name, line, column, fault);
    }
}

bool matches(const QDomElement& element, const QString& tag)
{
    return tag.isEmpty() || element.tagName() == tag;
}

// Calls `use` for the child elements in document order, or for all descendants. Stops when `use`
// answers false.
template <class Use>
bool visit(const QDomElement& element, bool recursive, const Use& use)
{
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (!use(child) || (recursive && !visit(child, true, use))) {
            return false;
        }
    }
    return true;
}
} // namespace

void KuxXml::readXml(const QString& path, QDomDocument& document)
{
    const KuxXmlFile file(path);
    parse(file.begin(), file.size(), path, document);
    if (QFileInfo(path).fileName() == QLatin1String("Itz")) {
        QFile::remove(path + QLatin1String(".patched"));
    }
}

void KuxXml::readXml(const QByteArray& bytes, const QString& name, QDomDocument& document)
{
    parse(bytes.constData(), bytes.size(), name, document);
}

void KuxXml::saveXml(const QString& path, const QDomDocument& document)
{
    QByteArray bytes;
    {
        QTextStream stream(&bytes, QIODevice::WriteOnly);
        stream.setCodec("UTF-8");
        document.save(stream, getIndent(), QDomNode::EncodingFromTextStream);
    }
    KuxXmlFile::write(path, bytes);
}

QDomElement KuxXml::createTextNode(QDomDocument& document, const QString& name, const QString& text)
{
    QDomElement element = document.createElement(name);
    if (!text.isEmpty()) {
        element.appendChild(document.createTextNode(KuxXmlText::toXmlText(text, name)));
    }
    return element;
}

QDomElement KuxXml::createCDataNode(QDomDocument& document, const QString& name,
                                    const QString& text)
{
    // A section that held its own end, or a carriage return, would not read back.
    if (!KuxXmlText::fitsCData(text)) {
        return createTextNode(document, name, text);
    }
    QDomElement element = document.createElement(name);
    if (!text.isEmpty()) {
        element.appendChild(document.createCDATASection(KuxXmlText::toXmlText(text, name)));
    }
    return element;
}

QDomElement KuxXml::createTextOrCDATANode(QDomDocument& document, const QString& name,
                                          const QString& text)
{
    return text.contains(QLatin1Char('\n')) || KuxXmlText::isBlank(text)
               ? createCDataNode(document, name, text)
               : createTextNode(document, name, text);
}

QString KuxXml::getValue(const QDomElement& element)
{
    // A CDATA section is a text to the DOM.
    return element.firstChild().toText().data();
}

void KuxXml::setValue(QDomElement& element, const QString& text)
{
    QDomNode first = element.firstChild();
    if (first.isText()) {
        first.toText().setData(text);
    } else if (first.isNull()) {
        element.appendChild(element.ownerDocument().createTextNode(text));
    }
}

QString KuxXml::encodeBool(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

bool KuxXml::decodeBool(const QString& text, bool* ok)
{
    bool value = false;
    const bool known = KuuMementoCodec<bool>::decode(text, value);
    if (ok) {
        *ok = known;
    }
    return value;
}

bool KuxXml::decodeBool(const QString& text, bool defaultValue)
{
    bool ok = false;
    const bool value = decodeBool(text, &ok);
    return ok ? value : defaultValue;
}

bool KuxXml::decodeBool(const QDomElement& element, const QString& attribute, bool* ok)
{
    return decodeBool(element.attribute(attribute), ok);
}

bool KuxXml::decodeBool(const QDomElement& element, const QString& attribute, bool defaultValue)
{
    return decodeBool(element.attribute(attribute), defaultValue);
}

QString KuxXml::encodeDouble(double value)
{
    return QString::fromLatin1(KuxXmlText::toShortest(value));
}

double KuxXml::decodeDouble(const QString& text, double defaultValue)
{
    return HbbGlobal::convertString(text, defaultValue);
}

int KuxXml::decodeInt(const QString& text, int defaultValue)
{
    return HbbGlobal::convertString(text, defaultValue);
}

int KuxXml::decodeInt(const QDomElement& element, const QString& attribute, int defaultValue)
{
    return HbbGlobal::convertString(element.attribute(attribute), defaultValue);
}

qint16 KuxXml::decodeInt16(const QString& text, qint16 defaultValue)
{
    return HbbGlobal::convertString(text, defaultValue);
}

quint64 KuxXml::decodeUint64(const QString& text, quint64 defaultValue)
{
    return HbbGlobal::convertString(text, defaultValue);
}

HbbOrderedMap<QString, QString> KuxXml::loadFields(const QDomElement& element)
{
    HbbOrderedMap<QString, QString> fields;
    visit(element, false, [&](const QDomElement& child) {
        fields.insert(child.tagName(), child.text());
        return true;
    });
    return fields;
}

void KuxXml::saveFields(QDomDocument& document, QDomElement& element,
                        const HbbOrderedMap<QString, QString>& fields)
{
    for (const auto& [key, value] : fields) {
        element.appendChild(createTextOrCDATANode(document, key, value));
    }
}

QDomElement KuxXml::getElementFromPath(const QDomElement& element, const QString& path)
{
    QDomElement current = element;
    const QStringList steps = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& step : steps) {
        current = current.firstChildElement(step);
    }
    return current;
}

QDomElement KuxXml::getElementFromAttribute(const QDomElement& element, const QString& tag,
                                            const QString& attribute, const QString& value,
                                            bool recursive)
{
    QDomElement found;
    visit(element, recursive, [&](const QDomElement& child) {
        if (matches(child, tag) && child.hasAttribute(attribute) &&
            child.attribute(attribute) == value) {
            found = child;
        }
        return found.isNull();
    });
    return found;
}

QList<QDomElement> KuxXml::getElementsFromAttribute(const QDomElement& element, const QString& tag,
                                                    const QString& attribute, const QString& value,
                                                    bool recursive)
{
    QList<QDomElement> found;
    visit(element, recursive, [&](const QDomElement& child) {
        if (matches(child, tag) && child.hasAttribute(attribute) &&
            child.attribute(attribute) == value) {
            found.append(child);
        }
        return true;
    });
    return found;
}

QList<QDomElement> KuxXml::getElementsFromTag(const QDomElement& element, const QString& tag,
                                              bool recursive)
{
    QList<QDomElement> found;
    visit(element, recursive, [&](const QDomElement& child) {
        if (matches(child, tag)) {
            found.append(child);
        }
        return true;
    });
    return found;
}

void KuxXml::removeNodeLevel(QDomNode node)
{
    QDomNode parent = node.parentNode();
    if (parent.isNull()) {
        return;
    }
    while (node.hasChildNodes()) {
        parent.insertBefore(node.firstChild(), node);
    }
    parent.removeChild(node);
}
