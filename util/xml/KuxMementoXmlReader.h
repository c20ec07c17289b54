#pragma once

#include "KuxMementoXmlRules.h"

#include <vector>

/// The cursor over the bytes of a memento file of the form that we write: UTF-8, elements without
/// attributes but `type`, texts and CDATA sections, the predefined and numeric references.
///
/// Whatever else XML allows, and every fault, makes it give up: it is not the judge of a document.
/// The caller then takes the DOM road, which reads all of XML and words the errors. So this one
/// stays small, and the two cannot disagree on what is valid.
class KuxMementoXmlReader
{
public:
    /// The bytes are borrowed.
    KuxMementoXmlReader(const char* begin, const char* end)
        : m_at(begin)
        , m_end(end)
    {
    }

    /// Answers false when it gave up.
    bool read(KuuMemento& memento);

    bool enterChild();
    void leave();
    QString getName() const { return KuxXmlText::decodeName(getTag()); }
    QString getTag() const { return QString::fromUtf8(m_open.back().begin, m_open.back().length); }
    KuxMementoXmlRules::Type getType() const { return m_type; }
    QString readText();

private:
    struct Name {
        const char* begin;
        int length;
    };

    bool giveUp();
    bool startsWith(const char* token) const;
    void skipSpace();
    bool skipDeclaration();
    bool readName(Name& name);
    bool readStartTag();
    bool readEndTag();
    bool readRun(QString& text, qint64& length);
    bool readCData(QString& text, qint64& length);
    bool appendReferences(const char* begin, const char* end, QString& text);
    bool append(const char* begin, const char* end, QString& text);

    const char* m_at;
    const char* m_end;
    std::vector<Name> m_open;
    KuxMementoXmlRules::Type m_type = KuxMementoXmlRules::Type::NONE;
    bool m_closed = false; // the end of the current element is behind us
    bool m_failed = false;
};
