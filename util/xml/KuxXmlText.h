#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// What texts and names must become to stand in an XML 1.0 file, and back.
namespace KuxXmlText
{
/// XML's own white space: what a reader drops when it stands alone between tags.
inline bool isXmlSpace(ushort c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

/// A character that XML 1.0 cannot hold; surrogates are judged in pairs, elsewhere.
inline bool isForbidden(ushort c)
{
    return (c < 0x20 && !isXmlSpace(c)) || c >= 0xFFFE;
}

/// Where the first unit stands that XML cannot hold, from a place on that is not within a pair; -1
/// for none.
int findForbidden(const QString& text, int from = 0);

/// The text with U+FFFD for what XML cannot hold; a replacement warns and names `key`.
QString toXmlText(const QString& text, const QString& key);
/// Warns that a text was changed.
void warnReplaced(const QString& key);

/// The shortest text that reads back as exactly `value`; unlike Qt's, it keeps the sign of zero.
QByteArray toShortest(double value);

/// White space only (Unicode's, as far as XML holds it): a DOM reader drops it unless it stands in
/// a CDATA section.
bool isBlank(const QString& text);
/// Whether a CDATA section can hold the text: it can neither hold its own end nor protect a
/// carriage return from the reader's normalisation.
bool fitsCData(const QString& text);
/// Blank, and CDATA can hold it. (A blank text with a carriage return survives as "&#xd;".)
bool needsCData(const QString& text);

/// True when `c` may stand in a name as it is; stricter than XML, so that every reader agrees.
bool isPlainNameCharacter(ushort c, bool first);
/// The XML name of a key, see KuxXmlMementoFile. No key is empty (an empty one gives "_").
QString encodeName(const QString& key);
/// The same for an association, whose name must not be that of another part of a memento's body.
QString encodeRelation(const QString& relation);
QString decodeName(const QString& name);
} // namespace KuxXmlText
