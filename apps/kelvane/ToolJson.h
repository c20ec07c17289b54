#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <utility>

/// Writes one JSON document, indented, its keys in the order that they are given. Reals are the
/// shortest text that reads back the same; what JSON has no number for (undefined, infinite) is
/// null.
class ToolJson
{
public:
    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }

    /// In an object, before each value.
    ToolJson& key(const char* name);

    void value(const QString& text);
    void value(double number);
    void value(qint64 number);
    void value(bool truth);
    void value(const QStringList& texts);
    /// A double or a qint64; null for anything else.
    void number(const QVariant& number);
    void null();

    /// The text, or null for an empty one.
    void textOrNull(const QString& text);

    /// What was written since the last call, of a document that goes out in pieces.
    QByteArray take() { return std::exchange(m_text, QByteArray()); }

    /// The document, with a line feed at its end.
    QByteArray toByteArray() const { return m_text + '\n'; }

private:
    void begin(char bracket);
    void end(char bracket);
    void beginItem();
    void beginLine();
    void appendQuoted(const QString& text);

    QByteArray m_text;
    int m_depth = 0;
    bool m_isFirst = true; // nothing stands in the innermost bracket yet
    bool m_hasKey = false; // the value goes behind it
};
