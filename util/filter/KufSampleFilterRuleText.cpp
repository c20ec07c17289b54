#include "KufRuleScanner.h"

#include <util/dataset/KudADataTable.h>
#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>
#include <util/filter/KufSampleFilterRuleText.h>
#include <util/filter/KufSampleFilterValidator.h>

#include <basic/base/HbbStringFormat.h>
#include <basic/data/HbdAVariable.h>

namespace
{
using Numeric = KufSampleFilterRuleNumeric;
using Operator = KufSampleFilterRuleNumeric::CompareOperator;
using Bound = KufSampleFilterRuleNumeric::IntervalOperator;
using Alpha = KufSampleFilterRuleAlpha;
using RulePointer = QSharedPointer<KufISampleFilterRule>;

QString tr(const char* text)
{
    return KufSampleFilterRuleText::tr(text);
}

/// The ways to write each operator, the printed one first.
struct OperatorSign {
    const char* sign;
    Operator op;
};
const OperatorSign OPERATOR_SIGNS[] = {
    {"<=", Operator::LESS_OR_EQUAL_TO},
    {"<", Operator::LESS_THAN},
    {">=", Operator::GREATER_OR_EQUAL_TO},
    {">", Operator::GREATER_THAN},
    {"!=", Operator::NOT_EQUAL},
    {"=", Operator::EQUAL},
    {"≤", Operator::LESS_OR_EQUAL_TO},
    {"≥", Operator::GREATER_OR_EQUAL_TO},
    {"≠", Operator::NOT_EQUAL},
};

Operator operatorOf(const QString& sign)
{
    for (const OperatorSign& row : OPERATOR_SIGNS) {
        if (sign == QString::fromUtf8(row.sign))
            return row.op;
    }
    return Operator::EQUAL;
}

QString signOf(const Operator& op)
{
    for (const OperatorSign& row : OPERATOR_SIGNS) {
        if (row.op == op)
            return QString::fromUtf8(row.sign);
    }
    return QString();
}

RulePointer parseNumberComparison(KufRuleScanner& scanner, const Operator& op)
{
    const double value = scanner.takeNumber();
    auto rule = QSharedPointer<Numeric>::create(op, value);
    const int position = scanner.getPosition();
    if (!scanner.takeSign({"+-", "±"}).isNull()) {
        if (!rule->usesTolerance())
            scanner.failAt(position, tr("only '=' and '!=' have a tolerance."));
        rule->setTolerance(scanner.takeNumber());
    }
    return rule;
}

RulePointer parseTextComparison(KufRuleScanner& scanner, const Operator& op, bool isCategory)
{
    const int position = scanner.getPosition();
    const QString text = scanner.takeText();
    if (isCategory && op == Operator::EQUAL)
        return QSharedPointer<KufSampleFilterRuleEnum>::create(QStringList(text));
    if (isCategory)
        scanner.failAt(position, tr("a category is selected by '=' or by 'in {…}'."));
    if (op == Operator::EQUAL)
        return QSharedPointer<Alpha>::create(Alpha::Mode::EQUAL_TO, text);
    if (op == Operator::NOT_EQUAL)
        return QSharedPointer<Alpha>::create(Alpha::Mode::NOT_EQUAL_TO, text);
    scanner.failAt(position, tr("a number is expected; texts have '=', '!=' and 'contains'."));
}

RulePointer parseRange(KufRuleScanner& scanner, const QString& opening)
{
    const double lower = scanner.takeNumber();
    if (scanner.takeSign({","}).isNull())
        scanner.fail(tr("',' and the upper bound are expected."));
    const double upper = scanner.takeNumber();
    const QString closing = scanner.takeSign({"]", ")"});
    if (closing.isNull())
        scanner.fail(tr("']' or ')' is expected."));
    const auto bound = [](bool isOpen) {
        return isOpen ? Bound::ITV_LESS_THAN : Bound::ITV_LESS_OR_EQUAL_TO;
    };
    return QSharedPointer<Numeric>::create(lower, bound(opening == QLatin1String("(")), upper,
                                           bound(closing == QLatin1String(")")));
}

RulePointer parseCategories(KufRuleScanner& scanner)
{
    QStringList names;
    if (!scanner.takeSign({"}"}).isNull())
        return QSharedPointer<KufSampleFilterRuleEnum>::create(names);
    while (true) {
        const QString name = scanner.takeCategory();
        if (name.isNull())
            scanner.fail(tr("the name of a category is expected."));
        names.append(name);
        const QString sign = scanner.takeSign({",", "}"});
        if (sign.isNull())
            scanner.fail(tr("',' or '}' is expected."));
        if (sign == QLatin1String("}"))
            return QSharedPointer<KufSampleFilterRuleEnum>::create(names);
    }
}

RulePointer parseIs(KufRuleScanner& scanner)
{
    const int position = scanner.getPosition();
    if (scanner.takeWord("defined"))
        return QSharedPointer<Numeric>::create();
    if (scanner.takeWord("undefined") || scanner.takeWord("not"))
        scanner.failAt(position, tr("there is only 'is defined': negate it in the combination, "
                                    "as in 'not R1'."));
    scanner.fail(tr("'defined' is expected."));
}

RulePointer parseContains(KufRuleScanner& scanner)
{
    if (!scanner.isAtQuote())
        scanner.fail(tr("a text in double quotes is expected."));
    return QSharedPointer<Alpha>::create(Alpha::Mode::CONTAINS, scanner.takeText());
}

RulePointer parseIn(KufRuleScanner& scanner)
{
    const QString opening = scanner.takeSign({"[", "(", "{"});
    if (opening.isNull())
        scanner.fail(tr("'[', '(' or '{' is expected."));
    return opening == QLatin1String("{") ? parseCategories(scanner) : parseRange(scanner, opening);
}

RulePointer parseCondition(KufRuleScanner& scanner, const HbdEVarType& type)
{
    const int position = scanner.getPosition();
    if (scanner.takeWord("is"))
        return parseIs(scanner);
    if (scanner.takeWord("contains"))
        return parseContains(scanner);
    if (scanner.takeWord("in"))
        return parseIn(scanner);
    if (scanner.takeWord("selected"))
        return QSharedPointer<KufSampleFilterRuleSelection>::create(false);
    if (scanner.takeWord("not")) {
        if (!scanner.takeWord("selected"))
            scanner.fail(tr("'selected' is expected."));
        return QSharedPointer<KufSampleFilterRuleSelection>::create(true);
    }
    const QString sign = scanner.takeSign({"<=", "<", ">=", ">", "!=", "=", "≤", "≥", "≠"});
    if (sign.isNull())
        scanner.failAt(position, tr("one of < <= > >= = != 'in', 'is defined', 'contains' and "
                                    "'selected' is expected."));
    return scanner.isAtQuote()
               ? parseTextComparison(scanner, operatorOf(sign), type == HbdEVarType::CATEGORY)
               : parseNumberComparison(scanner, operatorOf(sign));
}

QString numberText(double value)
{
    return QString::fromLatin1(
        HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::SHORTEST, 0));
}

QString printNumeric(const QString& name, const Numeric& rule)
{
    if (rule.getMode() == Numeric::Mode::IS_DEFINED)
        return name + QLatin1String(" is defined");
    if (rule.getMode() == Numeric::Mode::RANGE) {
        const bool isOpenBelow = rule.getLowerOperator() == Bound::ITV_LESS_THAN;
        const bool isOpenAbove = rule.getUpperOperator() == Bound::ITV_LESS_THAN;
        return name + QLatin1String(isOpenBelow ? " in (" : " in [") +
               numberText(rule.getLowerBound()) + QLatin1String(", ") +
               numberText(rule.getUpperBound()) + QLatin1String(isOpenAbove ? ")" : "]");
    }
    const QString tolerance = rule.usesTolerance() && rule.getTolerance() != 0.0
                                  ? QLatin1String(" +- ") + numberText(rule.getTolerance())
                                  : QString();
    return name + QLatin1Char(' ') + signOf(rule.getCompareOperator()) + QLatin1Char(' ') +
           numberText(rule.getCompareValue()) + tolerance;
}

QString printAlpha(const QString& name, const Alpha& rule)
{
    const char* words = rule.getMode() == Alpha::Mode::CONTAINS   ? " contains "
                        : rule.getMode() == Alpha::Mode::EQUAL_TO ? " = "
                                                                  : " != ";
    return name + QLatin1String(words) + KufRuleScanner::quoted(rule.getText());
}

QString printEnum(const QString& name, const KufSampleFilterRuleEnum& rule)
{
    QStringList labels;
    for (const QString& label : rule.getSelectedList())
        labels.append(KufRuleScanner::printedCategory(label));
    return name + QLatin1String(" in {") + labels.join(QLatin1String(", ")) + QLatin1Char('}');
}
} // namespace

KufSampleFilterRuleText::KufSampleFilterRuleText(const KudADataTable& table)
    : m_table(table)
{
}

KudDatasetVariable KufSampleFilterRuleText::getSelectionVariable() const
{
    for (int i = 0; i < m_table.getVariableCount(); ++i) {
        const KudDatasetVariable variable = m_table.getVariableAt(i);
        if (m_table.getDetails(variable).type == HbdEVarType::SELECTION)
            return variable;
    }
    return KudDatasetVariable();
}

KufSampleFilterRuleText::Rule KufSampleFilterRuleText::parse(const QString& text) const
{
    KufRuleScanner scanner(text);
    Rule parsed;
    const bool isInverted = scanner.takeWord("not");
    if (scanner.takeWord("selected")) {
        parsed.variable = getSelectionVariable();
        if (!parsed.variable.isValid())
            scanner.failAt(0, tr("the table has no selection variable."));
        parsed.rule = QSharedPointer<KufSampleFilterRuleSelection>::create(isInverted);
        scanner.requireEnd();
        return parsed;
    }
    if (isInverted)
        scanner.fail(tr("'selected' is expected; other rules are negated in the combination."));
    const int position = scanner.getPosition();
    const QString name = scanner.takeName();
    if (name.isNull())
        scanner.fail(tr("the name of a variable is expected, with odd characters in double "
                        "quotes."));
    parsed.variable = m_table.getVariableFromName(name);
    const HbdAVariable* column =
        parsed.variable.isValid() ? m_table.readValues(parsed.variable) : nullptr;
    if (column == nullptr)
        scanner.failAt(position, tr("there is no variable '%1'.").arg(name));
    const QString fullName = parsed.variable.getFullVariableName();
    if (fullName != name)
        scanner.failAt(
            position,
            tr("'%1' has several columns: name one in full, as in \"%2\".").arg(name, fullName));
    const int condition = scanner.getPosition();
    parsed.rule = parseCondition(scanner, column->getType());
    scanner.requireEnd();
    const QString fault = KufSampleFilterValidator::findFault(*parsed.rule, *column);
    if (!fault.isEmpty())
        scanner.failAt(condition, tr("the variable '%1' %2").arg(name, fault));
    return parsed;
}

QString KufSampleFilterRuleText::print(const KudDatasetVariable& variable,
                                       const KufISampleFilterRule& rule) const
{
    const QString name = KufRuleScanner::printedName(variable.getFullVariableName());
    if (const auto* numeric = dynamic_cast<const Numeric*>(&rule))
        return printNumeric(name, *numeric);
    if (const auto* alpha = dynamic_cast<const Alpha*>(&rule))
        return printAlpha(name, *alpha);
    if (const auto* categories = dynamic_cast<const KufSampleFilterRuleEnum*>(&rule))
        return printEnum(name, *categories);
    const auto* selection = dynamic_cast<const KufSampleFilterRuleSelection*>(&rule);
    if (selection == nullptr)
        return QString();
    const QString words = selection->getInvertSelection() ? QStringLiteral("not selected")
                                                          : QStringLiteral("selected");
    return variable == getSelectionVariable() ? words : name + QLatin1Char(' ') + words;
}
