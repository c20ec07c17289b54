#pragma once

#include "KuxMementoXmlRules.h"

#include <QtXml/QDomDocument>

#include <vector>

/// The sink that writes a memento into a DOM; see KuxMementoXmlRules.
class KuxMementoDomSink
{
public:
    KuxMementoDomSink(const QDomDocument& document, const QDomNode& element)
        : m_document(document)
        , m_current(element)
    {
    }

    void open(QLatin1String name) { openElement(name); }
    void open(const QString& key) { openElement(KuxXmlText::encodeName(key)); }
    void openRelation(const QString& relation)
    {
        openElement(KuxXmlText::encodeRelation(relation));
    }
    void setType(const char* type)
    {
        m_current.toElement().setAttribute(QStringLiteral("type"), QLatin1String(type));
    }
    void text(const QString& text, const QString& key);
    void ascii(const QByteArray& text) { appendText(QString::fromLatin1(text)); }
    void close()
    {
        m_current = m_current.parentNode();
        --m_depth;
    }

private:
    void openElement(const QString& name)
    {
        KuxMementoXmlRules::checkDepth(m_depth++);
        m_current = m_current.appendChild(m_document.createElement(name));
    }
    void appendText(const QString& text)
    {
        if (!text.isEmpty()) {
            m_current.appendChild(m_document.createTextNode(text));
        }
    }

    QDomDocument m_document;
    QDomNode m_current;
    size_t m_depth = 1; // the element that the caller made
};

inline void KuxMementoDomSink::text(const QString& text, const QString& key)
{
    const QString clean = KuxXmlText::toXmlText(text, key);
    if (KuxXmlText::needsCData(clean)) {
        m_current.appendChild(m_document.createCDATASection(clean));
    } else {
        appendText(clean);
    }
}

/// The cursor that walks a DOM.
class KuxMementoDomCursor
{
public:
    explicit KuxMementoDomCursor(const QDomElement& element)
    {
        m_open.push_back({element, element.firstChildElement()});
    }

    bool enterChild()
    {
        const QDomElement child = m_open.back().next;
        if (child.isNull()) {
            return false;
        }
        m_open.back().next = child.nextSiblingElement();
        m_open.push_back({child, child.firstChildElement()});
        return true;
    }
    void leave() { m_open.pop_back(); }
    QString getTag() const { return current().tagName(); }
    QString getName() const { return KuxXmlText::decodeName(getTag()); }
    QString readText() const { return current().text(); }
    KuxMementoXmlRules::Type getType() const
    {
        const QString attribute = QStringLiteral("type");
        return current().hasAttribute(attribute)
                   ? KuxMementoXmlRules::typeFromText(current().attribute(attribute))
                   : KuxMementoXmlRules::Type::NONE;
    }

private:
    struct Level {
        QDomElement element;
        QDomElement next;
    };

    const QDomElement& current() const { return m_open.back().element; }

    std::vector<Level> m_open;
};
