#include "KufCombination.h"

#include <util/filter/KufISampleFilter.h>
#include <util/filter/KufSampleFilterASTVisitor.h>
#include <util/filter/KufSampleFilterDefaultCombination.h>

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace
{
bool isRuleName(const QString& word)
{
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    return word.size() > 1 && (word[0] == QLatin1Char('R') || word[0] == QLatin1Char('r')) &&
           std::all_of(word.begin() + 1, word.end(), isDigit);
}
} // namespace

KufCombination::KufCombination(const KufISampleFilter* filter)
    : m_ruleCount(filter == nullptr ? 0 : filter->getRuleCount())
{
    const QString text = filter == nullptr ? QString() : filter->getCombination();
    const bool isDefault = text.trimmed().isEmpty();
    parse(isDefault ? KufSampleFilterDefaultCombination(filter).getCombination() : text);
}

QVector<KufCombination::Word> KufCombination::split(const QString& text)
{
    static const QRegularExpression separator(QStringLiteral("\\s+|\\b|(?=[()])"));
    QVector<Word> words;
    int begin = 0;
    const auto take = [&](int end) {
        if (end > begin)
            words.append({text.mid(begin, end - begin), begin});
    };
    auto matches = separator.globalMatch(text);
    // One word too many shows that there are too many.
    while (matches.hasNext() && words.size() <= KufSampleFilterASTVisitor::MAX_WORDS) {
        const QRegularExpressionMatch match = matches.next();
        take(match.capturedStart());
        begin = match.capturedEnd();
    }
    take(text.size());
    return words;
}

void KufCombination::parse(const QString& text)
{
    const QVector<Word> words = split(text);
    if (words.isEmpty())
        return; // no rules, no condition
    for (const Word& word : words) {
        takeWord(word);
        if (!isValid())
            return;
    }
    finish(text.size());
}

void KufCombination::takeWord(const Word& word)
{
    const QString lower = word.text.toLower();
    if (m_words.size() >= KufSampleFilterASTVisitor::MAX_WORDS)
        return fail(word.position,
                    tr("there are more than %1 words.").arg(KufSampleFilterASTVisitor::MAX_WORDS));
    static const QStringList known = {QStringLiteral("and"), QStringLiteral("or"),
                                      QStringLiteral("not"), QStringLiteral("("),
                                      QStringLiteral(")")};
    if (!isRuleName(word.text) && !known.contains(lower))
        return fail(word.position, tr("'%1' is neither a rule nor 'and', 'or', 'not', '(' or ')'.")
                                       .arg(word.text.left(40)));
    if (m_expectsOperand)
        takeOperand(word, lower);
    else
        takeOperator(word, lower);
}

void KufCombination::takeOperand(const Word& word, const QString& lower)
{
    if (isRuleName(word.text))
        return takeRule(word);
    if (lower == QLatin1String("not") || lower == QLatin1String("(")) {
        if (++m_depth > KufSampleFilterASTVisitor::MAX_DEPTH)
            return fail(word.position, tr("parentheses and 'not' are nested deeper than %1.")
                                           .arg(KufSampleFilterASTVisitor::MAX_DEPTH));
        return push(lower == QLatin1String("(") ? Pending::OPEN : Pending::NOT, word, lower);
    }
    const bool isAfterOpening = !m_words.isEmpty() && m_words.last() == QLatin1String("(");
    if (lower == QLatin1String(")") && isAfterOpening)
        return fail(word.position, tr("there is nothing between the parentheses."));
    fail(word.position, tr("a rule, 'not' or '(' is expected instead of '%1'.").arg(word.text));
}

void KufCombination::takeRule(const Word& word)
{
    bool isNumber = false;
    const int number = word.text.midRef(1).toInt(&isNumber);
    if (m_ruleCount == 0)
        return fail(word.position,
                    tr("there is no rule '%1': the filter has none.").arg(word.text.left(40)));
    if (!isNumber || number < 1 || number > m_ruleCount)
        return fail(word.position,
                    tr("there is no rule '%1', the last one is '%2'.")
                        .arg(word.text.left(40), KufISampleFilter::getRuleName(m_ruleCount - 1)));
    m_nodes.append({Kind::RULE, number - 1});
    m_words.append(KufISampleFilter::getRuleName(number - 1));
    m_expectsOperand = false;
}

void KufCombination::takeOperator(const Word& word, const QString& lower)
{
    if (lower == QLatin1String(")"))
        return takeClosing(word);
    const bool isAnd = lower == QLatin1String("and");
    if (!isAnd && lower != QLatin1String("or"))
        return fail(word.position,
                    tr("'and', 'or' or ')' is expected before '%1'.").arg(word.text.left(40)));
    const Pending::Operator op = isAnd ? Pending::AND : Pending::OR;
    emitDownTo(op);
    push(op, word, lower);
    m_expectsOperand = true;
}

void KufCombination::takeClosing(const Word& word)
{
    emitDownTo(Pending::OR);
    if (m_pending.isEmpty())
        return fail(word.position, tr("there is no '(' for this ')'."));
    m_pending.removeLast();
    --m_depth;
    m_words.append(QStringLiteral(")"));
}

void KufCombination::push(Pending::Operator op, const Word& word, const QString& normal)
{
    m_pending.append({op, word.position});
    m_words.append(normal);
}

/// Operators that bind at least as strongly have their operands now.
void KufCombination::emitDownTo(Pending::Operator op)
{
    while (!m_pending.isEmpty() && m_pending.last().op >= op) {
        switch (m_pending.takeLast().op) {
        case Pending::NOT:
            --m_depth;
            m_nodes.append({Kind::NOT, -1});
            break;
        case Pending::AND:
            m_nodes.append({Kind::AND, -1});
            break;
        default:
            m_nodes.append({Kind::OR, -1});
        }
    }
}

void KufCombination::finish(int length)
{
    if (m_expectsOperand)
        return fail(length, tr("a rule, 'not' or '(' is expected at the end."));
    emitDownTo(Pending::OR);
    if (!m_pending.isEmpty())
        fail(m_pending.last().position, tr("there is no ')' for this '('."));
}

void KufCombination::fail(int position, const QString& reason)
{
    m_errorPosition = position;
    m_error =
        tr("At character %1 of the combination: %2").arg(QString::number(position + 1), reason);
}
