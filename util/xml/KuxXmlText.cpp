#include "KuxXmlText.h"

#include <basic/base/HbbDebug.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

#include <cmath>

namespace
{
constexpr int ESCAPE_LENGTH = 7; // _xHHHH_

bool isHexadecimal(QChar c)
{
    const ushort u = c.unicode();
    return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'F');
}

// "_xHHHH" at this place, whatever follows.
bool beginsEscape(const QString& text, int at)
{
    if (at + ESCAPE_LENGTH - 1 > text.size() || text.at(at) != QLatin1Char('_') ||
        text.at(at + 1) != QLatin1Char('x')) {
        return false;
    }
    for (int i = at + 2; i < at + ESCAPE_LENGTH - 1; ++i) {
        if (!isHexadecimal(text.at(i))) {
            return false;
        }
    }
    return true;
}

bool isEscape(const QString& text, int at)
{
    return at + ESCAPE_LENGTH <= text.size() && beginsEscape(text, at) &&
           text.at(at + ESCAPE_LENGTH - 1) == QLatin1Char('_');
}

QString escaped(QChar c)
{
    const QString digits = QString::number(c.unicode(), 16).toUpper();
    return QLatin1String("_x") + digits.rightJustified(4, QLatin1Char('0')) + QLatin1Char('_');
}
} // namespace

void KuxXmlText::warnReplaced(const QString& key)
{
    HbbDebug::printWarning(
        QCoreApplication::translate("KuxXmlMementoFile",
                                    "The text of '%1' holds characters that an XML file cannot "
                                    "hold; they are replaced.")
            .arg(key));
}

int KuxXmlText::findForbidden(const QString& text, int from)
{
    for (int i = from; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
        } else if (c.isSurrogate() || isForbidden(c.unicode())) {
            return i;
        }
    }
    return -1;
}

QString KuxXmlText::toXmlText(const QString& text, const QString& key)
{
    int at = findForbidden(text);
    if (at < 0) {
        return text;
    }
    warnReplaced(key);
    QString result = text;
    for (; at >= 0; at = findForbidden(text, at + 1)) {
        result[at] = QChar(QChar::ReplacementCharacter);
    }
    return result;
}

QByteArray KuxXmlText::toShortest(double value)
{
    return value == 0.0 && std::signbit(value)
               ? QByteArray("-0")
               : QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

bool KuxXmlText::isBlank(const QString& text)
{
    for (const QChar c : text) {
        if (!c.isSpace() || isForbidden(c.unicode())) {
            return false;
        }
    }
    return !text.isEmpty();
}

bool KuxXmlText::fitsCData(const QString& text)
{
    return !text.contains(QLatin1Char('\r')) && !text.contains(QLatin1String("]]>"));
}

bool KuxXmlText::needsCData(const QString& text)
{
    return isBlank(text) && fitsCData(text);
}

bool KuxXmlText::isPlainNameCharacter(ushort c, bool first)
{
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_') {
        return true;
    }
    if (c < 0xC0) {
        return !first && ((c >= '0' && c <= '9') || c == '-' || c == '.');
    }
    // Letters that the first and the fifth edition of XML 1.0 both know: readers differ in others.
    return (c <= 0x131 && c != 0xD7 && c != 0xF7) || (c >= 0x391 && c <= 0x3A1) ||
           (c >= 0x3B1 && c <= 0x3C9) || (c >= 0x410 && c <= 0x44F) ||
           (c >= 0x3041 && c <= 0x3094) || (c >= 0x30A1 && c <= 0x30FA) ||
           (c >= 0x4E00 && c <= 0x9FA5) || (c >= 0xAC00 && c <= 0xD7A3);
}

QString KuxXmlText::encodeName(const QString& key)
{
    QString name;
    for (int i = 0; i < key.size(); ++i) {
        const QChar c = key.at(i);
        // What follows the six characters may get an escape, whose underscore would end this one.
        const bool plain = isPlainNameCharacter(c.unicode(), i == 0) && !beginsEscape(key, i);
        if (plain) {
            name.append(c);
        } else {
            name.append(escaped(c));
        }
    }
    return name.isEmpty() ? QStringLiteral("_") : name;
}

QString KuxXmlText::encodeRelation(const QString& relation)
{
    const bool taken = relation == QLatin1String("id") || relation == QLatin1String("version") ||
                       relation == QLatin1String("fields");
    return taken ? escaped(relation.at(0)) + relation.mid(1) : encodeName(relation);
}

QString KuxXmlText::decodeName(const QString& name)
{
    int at = name.indexOf(QLatin1String("_x"));
    if (at < 0) {
        return name;
    }
    QString key = name.left(at);
    while (at < name.size()) {
        if (isEscape(name, at)) {
            key.append(QChar(name.midRef(at + 2, 4).toUShort(nullptr, 16)));
            at += ESCAPE_LENGTH;
        } else {
            key.append(name.at(at++));
        }
    }
    return key;
}
