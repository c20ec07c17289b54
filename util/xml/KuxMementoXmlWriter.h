#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

/// The sink that writes a memento straight into UTF-8: the very bytes that a DOM of the same
/// elements saves with an indentation of 4. Our elements hold either elements or one text.
class KuxMementoXmlWriter
{
public:
    KuxMementoXmlWriter();

    void open(QLatin1String name);
    void open(const QString& key);
    void openRelation(const QString& relation);
    void setType(const char* type);
    void text(const QString& text, const QString& key);
    void ascii(const QByteArray& text);
    void close();

    QByteArray takeBytes();

private:
    struct Element {
        int nameAt;
        int nameLength;
        bool hasText;
        bool hasElements;
    };

    void beginElement();
    void beginText();
    void append(const char* bytes, int size);
    void append(char c) { append(&c, 1); }
    void appendUtf8(const QString& text);
    void appendEscaped(const QString& text, const QString& key);
    void appendCharacter(const ushort* text, int& at, int size, bool& replaced);
    void indent();
    char* reserve(qint64 size);

    QByteArray m_bytes; // sized to its capacity, filled up to m_size
    qint64 m_size = 0;
    std::vector<Element> m_open;
};
