#pragma once

#include <QtCore/QString>

/// The character at `i` and a neighbour stand for one beyond U+FFFF.
inline bool kufIsPartOfPair(const QString& text, int i)
{
    const bool isHigh = text[i].isHighSurrogate() && i + 1 < text.size();
    const bool isLow = text[i].isLowSurrogate() && i > 0;
    return (isHigh && text[i + 1].isLowSurrogate()) || (isLow && text[i - 1].isHighSurrogate());
}

/// The character at `i` of a text that is quoted in one line: as it stands, or as \uXXXX where it
/// is not printable, breaks the line, or is half of a character.
inline QString kufPrintable(const QString& text, int i)
{
    const QChar c = text[i];
    const bool isSeparator =
        c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
    if (kufIsPartOfPair(text, i) || (c.isPrint() && !isSeparator))
        return c;
    return QStringLiteral("\\u%1").arg(uint(c.unicode()), 4, 16, QLatin1Char('0'));
}
