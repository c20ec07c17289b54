#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <initializer_list>

/// Reads the parts of a rule's text from left to right. A part that is not there leaves the place
/// as it is; `fail` raises the user error that names the place.
class KufRuleScanner
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterRuleText)

public:
    explicit KufRuleScanner(const QString& text)
        : m_text(text)
    {
        skipBlanks();
    }

    int getPosition() const { return m_position; }
    bool isAtEnd() const { return m_position == m_text.size(); }
    bool isAtQuote() const { return peek() == QLatin1Char('"'); }

    /// The word, in any case, not followed by what would make it another word.
    bool takeWord(const char* word);

    /// The first sign of these that stands here: list longer signs before their beginnings. Null
    /// when none does.
    QString takeSign(std::initializer_list<const char*> signs);

    /// A name as it stands, or in double quotes. Null when there is none.
    QString takeName();

    /// A category: what a name is, and what begins with a digit or holds a hyphen.
    QString takeCategory();

    /// A text in double quotes; null when there is none.
    QString takeText();

    /// A number in the C locale; an error when there is none.
    double takeNumber();

    void requireEnd() const;

    [[noreturn]] void fail(const QString& reason) const { failAt(m_position, reason); }
    [[noreturn]] void failAt(int position, const QString& reason) const;

    static QString quoted(const QString& text);
    /// As it stands where it may, else in double quotes.
    static QString printedName(const QString& name);
    static QString printedCategory(const QString& label);

private:
    QChar peek(int ahead = 0) const
    {
        return m_position + ahead < m_text.size() ? m_text[m_position + ahead] : QChar();
    }
    void skipBlanks();
    QString takeBare(bool (*mayStand)(QChar));
    QChar takeEscape();

    QString m_text;
    int m_position = 0;
};
