#include "KufRuleScanner.h"

#include "KufQuotedText.h"

#include <basic/error/HbeUserError.h>

#include <algorithm>

namespace
{
bool mayStandInName(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('.');
}

bool mayStandInCategory(QChar c)
{
    return mayStandInName(c) || c == QLatin1Char('-');
}

bool mayStandInNumber(QChar c)
{
    return mayStandInCategory(c) || c == QLatin1Char('+');
}

bool isBareName(const QString& name)
{
    static const char* const words[] = {"selected", "not", "is", "defined", "in",
                                        "contains", "and", "or", "inf"};
    const bool isWord = std::any_of(std::begin(words), std::end(words), [&](const char* word) {
        return name.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    });
    return !isWord && !name.isEmpty() && (name[0].isLetter() || name[0] == QLatin1Char('_')) &&
           std::all_of(name.begin(), name.end(), &mayStandInName);
}
} // namespace

void KufRuleScanner::skipBlanks()
{
    while (peek().isSpace())
        ++m_position;
}

bool KufRuleScanner::takeWord(const char* word)
{
    const QLatin1String wanted(word);
    const bool isHere =
        m_text.midRef(m_position, wanted.size()).compare(wanted, Qt::CaseInsensitive) == 0 &&
        !mayStandInName(peek(wanted.size()));
    if (isHere) {
        m_position += wanted.size();
        skipBlanks();
    }
    return isHere;
}

QString KufRuleScanner::takeSign(std::initializer_list<const char*> signs)
{
    for (const char* sign : signs) {
        const QString wanted = QString::fromUtf8(sign);
        if (m_text.midRef(m_position, wanted.size()) == wanted) {
            m_position += wanted.size();
            skipBlanks();
            return wanted;
        }
    }
    return QString();
}

QString KufRuleScanner::takeBare(bool (*mayStand)(QChar))
{
    const int begin = m_position;
    while (m_position < m_text.size() && mayStand(peek()))
        ++m_position;
    const QString bare = m_text.mid(begin, m_position - begin);
    skipBlanks();
    return bare.isEmpty() ? QString() : bare;
}

QString KufRuleScanner::takeName()
{
    const bool mayBegin = peek().isLetter() || peek() == QLatin1Char('_');
    return mayBegin ? takeBare(&mayStandInName) : takeText();
}

QString KufRuleScanner::takeCategory()
{
    return isAtQuote() ? takeText() : takeBare(&mayStandInCategory);
}

QString KufRuleScanner::takeText()
{
    if (!isAtQuote())
        return QString();
    const int begin = m_position++;
    QString text = QStringLiteral(""); // an empty text is one
    while (!isAtEnd() && !isAtQuote()) {
        const QChar c = m_text[m_position++];
        text += c == QLatin1Char('\\') ? takeEscape() : c;
    }
    if (isAtEnd())
        failAt(begin, tr("there is no end to this quoted text."));
    ++m_position;
    skipBlanks();
    return text;
}

QChar KufRuleScanner::takeEscape()
{
    const int begin = m_position - 1;
    const QChar c = peek();
    ++m_position;
    switch (c.unicode()) {
    case '"':
    case '\\':
        return c;
    case 'n':
        return QLatin1Char('\n');
    case 'r':
        return QLatin1Char('\r');
    case 't':
        return QLatin1Char('\t');
    case 'u': {
        const QStringRef digits = m_text.midRef(m_position, 4);
        const bool areDigits = std::all_of(digits.begin(), digits.end(), [](QChar digit) {
            return digit.unicode() < 128 && std::isxdigit(digit.unicode());
        });
        if (digits.size() == 4 && areDigits) {
            m_position += 4;
            return QChar(static_cast<ushort>(digits.toUInt(nullptr, 16)));
        }
        break;
    }
    default:
        break;
    }
    failAt(begin,
           tr("after '\\' one of \" \\ n r t, or u with four hexadecimal digits is expected."));
}

double KufRuleScanner::takeNumber()
{
    const int begin = m_position;
    // Up to the next sign that ends a number; a "+-" behind it begins the tolerance.
    int end = begin;
    while (end < m_text.size() && mayStandInNumber(m_text[end])) {
        const bool isExponentSign = end > begin && (m_text[end - 1] == QLatin1Char('e') ||
                                                    m_text[end - 1] == QLatin1Char('E'));
        const bool isSign = m_text[end] == QLatin1Char('+') || m_text[end] == QLatin1Char('-');
        if (isSign && end > begin && !isExponentSign)
            break;
        ++end;
    }
    QString digits = m_text.mid(begin, end - begin);
    if (digits.startsWith(QLatin1Char('+')))
        digits.remove(0, 1);
    bool isNumber = false;
    const double number = digits.toDouble(&isNumber);
    if (!isNumber || number != number)
        failAt(begin,
               digits.isEmpty()
                   ? tr("a number is expected.")
                   : tr("'%1' is no number, or none that can be held.").arg(digits.left(40)));
    m_position = end;
    skipBlanks();
    return number;
}

void KufRuleScanner::requireEnd() const
{
    if (!isAtEnd())
        fail(tr("the end is expected instead of '%1'.").arg(m_text.mid(m_position, 40)));
}

void KufRuleScanner::failAt(int position, const QString& reason) const
{
    throw HbeUserError(tr("At character %1 of the rule '%2': %3")
                           .arg(QString::number(position + 1), m_text.left(200), reason));
}

QString KufRuleScanner::quoted(const QString& text)
{
    QString result = QStringLiteral("\"");
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            result += QLatin1Char('\\') + QString(c);
        else if (c == QLatin1Char('\n'))
            result += QLatin1String("\\n");
        else if (c == QLatin1Char('\r'))
            result += QLatin1String("\\r");
        else if (c == QLatin1Char('\t'))
            result += QLatin1String("\\t");
        else
            result += kufPrintable(text, i);
    }
    return result + QLatin1Char('"');
}

QString KufRuleScanner::printedName(const QString& name)
{
    return isBareName(name) ? name : quoted(name);
}

QString KufRuleScanner::printedCategory(const QString& label)
{
    const bool isBare =
        !label.isEmpty() && std::all_of(label.begin(), label.end(), &mayStandInCategory);
    return isBare ? label : quoted(label);
}
