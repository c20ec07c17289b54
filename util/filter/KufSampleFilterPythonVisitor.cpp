#include "KufQuotedText.h"

#include <util/filter/KufISampleFilter.h>
#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>
#include <util/filter/KufSampleFilterValidator.h>

#include <basic/base/HbbStringFormat.h>

#include <cmath>

// A template is filled by one call of arg(), in one pass: values may hold "%1" or "%99" themselves.

namespace
{
/// The character at `i` ends the quoted text, changes it, or makes the source text no source text.
bool breaksQuoting(const QString& text, int i)
{
    const QChar c = text[i];
    return c == QLatin1Char('\'') || c == QLatin1Char('\\') || c == QLatin1Char('\n') ||
           c == QLatin1Char('\r') || c.isNull() || (c.isSurrogate() && !kufIsPartOfPair(text, i));
}

QString escaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('\'') || c == QLatin1Char('\\'))
            result += QLatin1Char('\\') + QString(c);
        else
            result += kufPrintable(text, i);
    }
    return result;
}

/// How numbers and texts stand in an expression.
struct Style {
    bool isEscaped;
    QStringList* rounded; // takes the numbers that are not written exactly

    QString text(const QString& value) const { return isEscaped ? escaped(value) : value; }

    QString number(double value) const
    {
        if (std::isnan(value))
            return QStringLiteral("np.nan");
        if (std::isinf(value))
            return value < 0 ? QStringLiteral("-np.inf") : QStringLiteral("np.inf");
        const QString exact = QString::fromLatin1(
            HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::SHORTEST, 0));
        if (isEscaped)
            return exact;
        const QByteArray digits =
            HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::DECIMAL, 12);
        if (digits.toDouble() != value)
            rounded->append(exact);
        return QString::fromLatin1(digits);
    }
};

QString numericExpression(const KufSampleFilterRuleNumeric& rule, const QString& variable,
                          const Style& style)
{
    using Operator = KufSampleFilterRuleNumeric::CompareOperator;
    using Bound = KufSampleFilterRuleNumeric::IntervalOperator;
    const auto sign = [](const Bound& bound) {
        return bound == Bound::ITV_LESS_THAN ? QStringLiteral("<") : QStringLiteral("<=");
    };
    if (rule.getMode() == KufSampleFilterRuleNumeric::Mode::IS_DEFINED)
        return QStringLiteral("~ np.isnan(%99)").arg(variable);
    if (rule.getMode() == KufSampleFilterRuleNumeric::Mode::RANGE)
        return QStringLiteral("(%1 %2 %99) & (%99 %3 %4)")
            .arg(style.number(rule.getLowerBound()), sign(rule.getLowerOperator()),
                 sign(rule.getUpperOperator()), style.number(rule.getUpperBound()), variable);
    const double value = rule.getCompareValue();
    const QString number = style.number(value);
    const QString low = style.number(value - rule.getTolerance());
    const QString high = style.number(value + rule.getTolerance());
    switch (rule.getCompareOperator().toEnum()) {
    case Operator::E_LESS_THAN:
        return QStringLiteral("%99 < %1").arg(number, variable);
    case Operator::E_LESS_OR_EQUAL_TO:
        return QStringLiteral("%99 <= %1").arg(number, variable);
    case Operator::E_GREATER_THAN:
        return QStringLiteral("%99 > %1").arg(number, variable);
    case Operator::E_GREATER_OR_EQUAL_TO:
        return QStringLiteral("%99 >= %1").arg(number, variable);
    case Operator::E_EQUAL:
        return QStringLiteral("(%99 >= %1) & (%99 <= %2)").arg(low, high, variable);
    case Operator::E_NOT_EQUAL:
        break;
    }
    return QStringLiteral("(%99 < %1) | (%99 > %2)").arg(low, high, variable);
}

QString alphaExpression(const KufSampleFilterRuleAlpha& rule, const QString& variable,
                        const Style& style)
{
    const QString text = style.text(rule.getText());
    switch (rule.getMode().toEnum()) {
    case KufSampleFilterRuleAlpha::Mode::E_EQUAL_TO:
        return QStringLiteral("%99 == '%1'").arg(text, variable);
    case KufSampleFilterRuleAlpha::Mode::E_NOT_EQUAL_TO:
        return QStringLiteral("%99 != '%1'").arg(text, variable);
    case KufSampleFilterRuleAlpha::Mode::E_CONTAINS:
        break;
    }
    return QStringLiteral("qm_find(%99,'%1') >= 0").arg(text, variable);
}

QString enumExpression(const KufSampleFilterRuleEnum& rule, const QString& variable,
                       const Style& style)
{
    if (rule.getSelectedList().isEmpty())
        return QStringLiteral("(%99 == 'BogusString')").arg(variable); // matches nothing
    QStringList terms;
    for (const QString& name : rule.getSelectedList())
        terms.append(QStringLiteral("(%99 == '%1')").arg(style.text(name), variable));
    return terms.join(QStringLiteral(" | "));
}

QString expressionOf(const KufISampleFilterRule& rule, const QString& variable, const Style& style)
{
    if (const auto* numeric = dynamic_cast<const KufSampleFilterRuleNumeric*>(&rule))
        return numericExpression(*numeric, variable, style);
    if (const auto* alpha = dynamic_cast<const KufSampleFilterRuleAlpha*>(&rule))
        return alphaExpression(*alpha, variable, style);
    if (const auto* categories = dynamic_cast<const KufSampleFilterRuleEnum*>(&rule))
        return enumExpression(*categories, variable, style);
    const auto* selection = dynamic_cast<const KufSampleFilterRuleSelection*>(&rule);
    if (selection == nullptr)
        return QString();
    return (selection->getInvertSelection() ? QStringLiteral("%99 == 0")
                                            : QStringLiteral("%99 == 1"))
        .arg(variable);
}

QStringList textsOf(const KufISampleFilterRule& rule)
{
    if (const auto* alpha = dynamic_cast<const KufSampleFilterRuleAlpha*>(&rule))
        return {alpha->getText()};
    if (const auto* categories = dynamic_cast<const KufSampleFilterRuleEnum*>(&rule))
        return categories->getSelectedList();
    return {};
}
} // namespace

KufSampleFilterPythonVisitor::KufSampleFilterPythonVisitor(
    const KufISampleFilter* filter, const KudADataset* dataset,
    const QList<KudDatasetVariable>& variables, const QString& mapping)
    : KufSampleFilterASTVisitor(filter)
    , m_variables(variables)
    , m_mapping(mapping.isEmpty() ? QStringLiteral("data") : mapping)
{
    if (dataset != nullptr)
        KufSampleFilterValidator(filter, dataset, variables).requireValid();
    _traverse();
}

KufSampleFilterPythonVisitor::~KufSampleFilterPythonVisitor() = default;

void KufSampleFilterPythonVisitor::_visitRule(int index)
{
    const KufISampleFilterRule* rule = _getFilter()->getRule(index);
    QString plain;
    QString safe;
    if (rule != nullptr) {
        const KudDatasetVariable name = m_variables.value(index);
        const QString variable = m_mapping + QLatin1String("['") +
                                 escaped(name.getFullVariableName()) + QLatin1String("']");
        const QString ruleName = KufISampleFilter::getRuleName(index);
        QStringList rounded;
        plain = expressionOf(*rule, variable, Style{false, &rounded});
        safe = expressionOf(*rule, variable, Style{true, nullptr});
        if (!m_checkedRules.contains(index)) {
            for (const QString& number : rounded)
                m_roundedNumbers.append(
                    tr("%1: the number %2 has more than 12 decimals.").arg(ruleName, number));
            checkQuoting(ruleName, *rule);
        }
        m_checkedRules.insert(index);
    }
    m_plain.stack.append(plain);
    m_escaped.stack.append(safe);
}

void KufSampleFilterPythonVisitor::checkQuoting(const QString& ruleName,
                                                const KufISampleFilterRule& rule)
{
    for (const QString& text : textsOf(rule)) {
        int i = 0;
        while (i < text.size() && !breaksQuoting(text, i))
            ++i;
        if (i == text.size())
            continue;
        const QString digits = QString::number(text[i].unicode(), 16).toUpper();
        const QString code = QLatin1String("U+") + digits.rightJustified(4, QLatin1Char('0'));
        const QString shown =
            text[i].isPrint() ? text[i] + QStringLiteral(" (%1)").arg(code) : code;
        m_quotingFaults.append(tr("%1: the text '%2' holds the character %3 at %4.")
                                   .arg(ruleName, text, shown, QString::number(i + 1)));
    }
}

void KufSampleFilterPythonVisitor::Operands::negate()
{
    stack.last() = QLatin1String("~") + QLatin1String(" (") + stack.last() + QLatin1Char(')');
}

void KufSampleFilterPythonVisitor::Operands::combine(QLatin1String sign)
{
    const QString right = stack.takeLast();
    stack.last() = QLatin1Char('(') + stack.last() + QLatin1String(") ") + sign +
                   QLatin1String(" (") + right + QLatin1Char(')');
}

void KufSampleFilterPythonVisitor::_visitNot()
{
    m_plain.negate();
    m_escaped.negate();
}

void KufSampleFilterPythonVisitor::_visitAnd()
{
    m_plain.combine(QLatin1String("&"));
    m_escaped.combine(QLatin1String("&"));
}

void KufSampleFilterPythonVisitor::_visitOr()
{
    m_plain.combine(QLatin1String("|"));
    m_escaped.combine(QLatin1String("|"));
}
