#include "ToolText.h"

#include <QtCore/QVector>

#include <algorithm>
#include <iterator>

namespace
{
/// The blocks of the characters that terminals show two columns wide.
constexpr struct {
    uint first;
    uint last;
} WIDE_BLOCKS[] = {
    {0x1100, 0x115f},   // Hangul, the leading consonants
    {0x2e80, 0x303e},   // CJK radicals and punctuation
    {0x3041, 0xa4cf},   // kana, CJK ideographs, Yi
    {0xa960, 0xa97c},   // Hangul
    {0xac00, 0xd7a3},   // Hangul syllables
    {0xf900, 0xfaff},   // CJK ideographs
    {0xfe30, 0xfe6f},   // CJK forms
    {0xff00, 0xff60},   // full width forms
    {0xffe0, 0xffe6},   // full width signs
    {0x1f300, 0x1f64f}, // pictographs
    {0x1f680, 0x1f6ff}, //
    {0x1f900, 0x1f9ff}, //
    {0x20000, 0x3fffd}, // CJK ideographs
};

int widthOf(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        break;
    }
    const bool isWide =
        std::any_of(std::begin(WIDE_BLOCKS), std::end(WIDE_BLOCKS), [=](const auto& block) {
            return block.first <= character && character <= block.last;
        });
    return isWide ? 2 : 1;
}

bool isObeyed(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    case QChar::Other_Format: // but for the joiners, which some scripts are written with
        return character != 0x200c && character != 0x200d;
    default:
        return false;
    }
}
} // namespace

int ToolText::getWidth(const QString& text)
{
    int width = 0;
    for (const uint character : text.toUcs4())
        width += widthOf(character);
    return width;
}

QString ToolText::makeVisible(const QString& text)
{
    QString visible;
    for (const uint character : text.toUcs4()) {
        if (character == '\n')
            visible += QStringLiteral("\\n");
        else if (character == '\t')
            visible += QStringLiteral("\\t");
        else if (isObeyed(character))
            visible += QStringLiteral("\\u%1").arg(character, 4, 16, QLatin1Char('0'));
        else
            visible += QString::fromUcs4(&character, 1);
    }
    return visible;
}

QString ToolText::cut(const QString& text, int width)
{
    if (getWidth(text) <= width)
        return text;
    QString beginning;
    int left = width - 1; // the sign takes one
    for (const uint character : text.toUcs4()) {
        left -= widthOf(character);
        if (left < 0)
            break;
        beginning += QString::fromUcs4(&character, 1);
    }
    return beginning + QChar(0x2026);
}

QString ToolText::padded(const QString& text, int width, bool right)
{
    const QString blanks(std::max(0, width - getWidth(text)), QLatin1Char(' '));
    return right ? blanks + text : text + blanks;
}
