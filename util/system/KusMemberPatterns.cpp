#include <util/system/KusMemberPatterns.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>

#include <algorithm>

namespace
{
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(KusMemberPatterns)
};

[[noreturn]] void refuse(const QString& pattern, const QString& fault)
{
    throw HbeUserError(Texts::tr("'%1' is no pattern of names: %2").arg(pattern, fault));
}

/// The set that begins at `at`, which moves on to its end.
QString translateSet(const QString& pattern, int& at)
{
    const bool isNegated = pattern.mid(at + 1, 1) == QLatin1String("!") ||
                           pattern.mid(at + 1, 1) == QLatin1String("^");
    const int begin = at + (isNegated ? 2 : 1);
    const int end = pattern.indexOf(QLatin1Char(']'), begin + 1); // "]" may be the first of the set
    if (end < 0)
        refuse(pattern, Texts::tr("a \"[\" has no \"]\"."));
    at = end;
    QString set = pattern.mid(begin, end - begin);
    if (set.contains(QLatin1Char('/')))
        refuse(pattern, Texts::tr("a set holds a \"/\"."));
    for (const char* special : {"\\", "[", "]", "^"})
        set.replace(QLatin1String(special), QLatin1Char('\\') + QLatin1String(special));
    return QStringLiteral("(?!/)[") + (isNegated ? QStringLiteral("^") : QString()) + set +
           QLatin1Char(']');
}

/// The "*" at `at`, or several.
QString translateStars(const QString& pattern, int& at)
{
    const int begin = at;
    while (at + 1 < pattern.size() && pattern.at(at + 1) == QLatin1Char('*'))
        ++at;
    if (at == begin)
        return QStringLiteral("[^/]*");
    const bool isElement = (begin == 0 || pattern.at(begin - 1) == QLatin1Char('/')) &&
                           at + 1 < pattern.size() && pattern.at(at + 1) == QLatin1Char('/');
    if (!isElement)
        return QStringLiteral(".*");
    ++at; // with the slash: the elements that it spans may be none
    return QStringLiteral("(?:[^/]+/)*");
}

/// The pattern as a regular expression for whole elements.
QString translate(const QString& pattern, const QString& body)
{
    QString expression;
    for (int at = 0; at < body.size(); ++at) {
        const QChar c = body.at(at);
        if (c == QLatin1Char('*'))
            expression += translateStars(body, at);
        else if (c == QLatin1Char('?'))
            expression += QStringLiteral("[^/]");
        else if (c == QLatin1Char('['))
            expression += translateSet(body, at);
        else if (c.isSurrogate()) // half of a letter, which must not be parted from the other
            expression += c;
        else
            expression += QRegularExpression::escape(QString(c));
    }
    const bool isAnchored = pattern.startsWith(QLatin1Char('/'));
    return (isAnchored ? QStringLiteral("\\A") : QStringLiteral("(?:\\A|/)")) + expression +
           QStringLiteral("(?:/|\\z)");
}

QRegularExpression compile(const QString& pattern)
{
    QString body = pattern;
    if (body.startsWith(QLatin1Char('/')))
        body.remove(0, 1);
    if (body.endsWith(QLatin1Char('/')))
        body.chop(1);
    const QStringList elements = body.split(QLatin1Char('/'));
    for (const QString& element : elements) {
        if (element.isEmpty() || element == QLatin1String(".") || element == QLatin1String(".."))
            refuse(pattern, Texts::tr("it has an empty element, \".\" or \"..\"."));
    }
    QRegularExpression expression(translate(pattern, body),
                                  QRegularExpression::DotMatchesEverythingOption);
    if (!expression.isValid())
        refuse(pattern, expression.errorString());
    expression.optimize();
    return expression;
}

/// The name as patterns see it: without empty elements and ".".
QString toText(const QByteArray& name)
{
    const QString text = QString::fromUtf8(name);
    QStringList elements = text.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    elements.removeAll(QStringLiteral("."));
    return elements.join(QLatin1Char('/'));
}
} // namespace

KusMemberPatterns::KusMemberPatterns(const QStringList& patterns)
    : m_patterns(patterns)
    , m_used(patterns.size(), false)
{
    for (const QString& pattern : patterns)
        m_expressions.append(compile(pattern));
}

bool KusMemberPatterns::matches(const QByteArray& name) const
{
    if (isEmpty())
        return false;
    const QString text = toText(name);
    return std::any_of(m_expressions.begin(), m_expressions.end(),
                       [&text](const QRegularExpression& expression) {
                           return expression.match(text).hasMatch();
                       });
}

bool KusMemberPatterns::matchesAndNotes(const QByteArray& name)
{
    if (isEmpty())
        return false;
    const QString text = toText(name);
    bool isMatch = false;
    for (int i = 0; i < m_expressions.size(); ++i) {
        if (m_expressions.at(i).match(text).hasMatch()) {
            m_used[i] = true;
            isMatch = true;
        }
    }
    return isMatch;
}

QStringList KusMemberPatterns::getUnused() const
{
    QStringList unused;
    for (int i = 0; i < m_patterns.size(); ++i) {
        if (!m_used.at(i))
            unused.append(m_patterns.at(i));
    }
    return unused;
}
