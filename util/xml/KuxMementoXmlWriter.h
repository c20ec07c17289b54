#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>
#include <vector>

/// The sink that writes a memento straight into UTF-8: the very bytes that a DOM of the same
/// elements saves with an indentation of 4. Our elements hold either elements or one text.
///
/// With a sink the bytes go there piece by piece, so that a dataset of a million samples is never
/// held as a document; the writer then takes no more than a buffer and the names of open elements.
class KuxMementoXmlWriter
{
public:
    using Sink = std::function<void(const char* bytes, qint64 size)>;

    explicit KuxMementoXmlWriter(Sink sink = Sink());

    void open(QLatin1String name);
    void open(const QString& key);
    void openRelation(const QString& relation);
    void setType(const char* type);
    void text(const QString& text, const QString& key);
    void ascii(const QByteArray& text);
    void close();

    /// Hands the rest to the sink.
    void finish();
    /// The whole document, without a sink.
    QByteArray takeBytes();

private:
    struct Element {
        int nameAt; // in m_names; the name ends where the next one begins
        bool hasText;
        bool hasElements;
    };

    void beginElement();
    void keepName(qint64 from);
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
    qint64 m_written = 0; // bytes that the sink has
    std::vector<Element> m_open;
    QByteArray m_names; // of the open elements, one after the other
    Sink m_sink;
};
