#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>

/// What stands before the DOM parser: it decodes the bytes, refuses what goes beyond KuxXmlLimits
/// or is no text, and mends what the parser of Qt 5 gets wrong. It reads the document once, without
/// a tree, and holds no more than one copy of it. Syntax is not its business: where a document is
/// not well-formed it steps aside, and the parser says so.
///
/// Mended: line ends (CR LF and CR are LF), references to characters beyond U+FFFF, and blank texts
/// written with references (they become CDATA, which the DOM keeps).
class KuxXmlGuard
{
public:
    /// Borrows the bytes. `name` stands for the file in the error "Error while parsing XML file…".
    KuxXmlGuard(const char* bytes, qint64 size, const QString& name);

    /// The document for the parser; raises a HbeProgrammingError.
    QString getText();

    /// The one place that words a parse error.
    [[noreturn]] static void raise(const QString& name, qint64 line, qint64 column,
                                   const QString& fault);

private:
    struct Entity {
        QByteArray value;
        qint64 size = -1; // all that it expands to, in characters; -1: not known yet
        qint64 tags = 0;  // "<" among that
        bool isOpen = false;
    };

    void decode();
    void checkUtf8();
    void scan();
    const char* scanMarkup(const char* at);
    const char* scanTag(const char* at);
    const char* scanDocumentType(const char* at);
    const char* scanEntity(const char* at);
    void scanText(const char* begin, const char* end);
    bool mendBlank(const char* begin, const char* end);
    const Entity* expand(const QByteArray& name, const char* where, int level);
    void addReference(const QByteArray& name, const char* where);
    void addNode(const char* where);
    void checkLength(const char* begin, const char* end);
    void copyUpTo(const char* at);
    [[noreturn]] void fail(const char* where, const QString& fault) const;
    [[noreturn]] void failExpansion(const char* where) const;
    [[noreturn]] void failUndecodable(const QString& text, const QByteArray& encoding) const;

    QString m_name;
    QByteArray m_owned; // the document when it had to be rewritten as a whole
    const char* m_begin;
    const char* m_end;
    QByteArray m_output; // mended part, up to m_copied
    const char* m_copied = nullptr;
    bool m_isMended = false;
    QHash<QByteArray, Entity> m_entities;
    qint64 m_depth = 0;
    qint64 m_entityTags = 0;
    qint64 m_expansion = 0;
    qint64 m_nodes = 0;
};
