#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>

#include <basic/base/HbbStringFormat.h>
#include <basic/data/HbdVariableDetails.h>

// What the rules say of themselves. A template is filled by one call of arg(), in one pass: names
// and texts may hold "%1" themselves.

namespace
{
QString numberText(double value)
{
    return QString::fromLatin1(
        HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::SHORTEST, 0));
}
} // namespace

QString KufSampleFilterRuleSelection::getDescription(const HbdVariableDetails& details) const
{
    return tr("'%1' is %2").arg(details.name, getShortDescription(details, false));
}

QString KufSampleFilterRuleSelection::getShortDescription(const HbdVariableDetails& details,
                                                          bool withVariableName) const
{
    if (withVariableName)
        return getDescription(details);
    return m_invertSelection ? tr("not selected") : tr("selected");
}

QString KufSampleFilterRuleNumeric::describe() const
{
    const QString value = numberText(m_compareValue);
    if (m_mode == Mode::IS_DEFINED)
        return tr("is defined");
    if (m_mode == Mode::RANGE) {
        const bool isAbove = m_lowerOperator == IntervalOperator::ITV_LESS_THAN;
        const bool isBelow = m_upperOperator == IntervalOperator::ITV_LESS_THAN;
        return tr("is %1 %2 and %3 %4")
            .arg(isAbove ? tr("greater than") : tr("greater than or equal to"),
                 numberText(m_lowerBound), isBelow ? tr("less than") : tr("less than or equal to"),
                 numberText(m_upperBound));
    }
    switch (m_compareOperator.toEnum()) {
    case CompareOperator::E_LESS_THAN:
        return tr("is less than %1").arg(value);
    case CompareOperator::E_LESS_OR_EQUAL_TO:
        return tr("is less than or equal to %1").arg(value);
    case CompareOperator::E_GREATER_THAN:
        return tr("is greater than %1").arg(value);
    case CompareOperator::E_GREATER_OR_EQUAL_TO:
        return tr("is greater than or equal to %1").arg(value);
    case CompareOperator::E_NOT_EQUAL:
        return tr("is not equal to %1").arg(value);
    case CompareOperator::E_EQUAL:
        break;
    }
    return tr("is equal to %1 (+/- %2)").arg(value, numberText(m_tolerance));
}

QString KufSampleFilterRuleNumeric::describeShortly() const
{
    const QString value = numberText(m_compareValue);
    if (m_mode == Mode::IS_DEFINED)
        return tr("is defined");
    if (m_mode == Mode::RANGE) {
        const bool isAbove = m_lowerOperator == IntervalOperator::ITV_LESS_THAN;
        const bool isBelow = m_upperOperator == IntervalOperator::ITV_LESS_THAN;
        return tr("in %1%2-%3%4")
            .arg(isAbove ? QStringLiteral("(") : QStringLiteral("["), numberText(m_lowerBound),
                 numberText(m_upperBound), isBelow ? QStringLiteral(")") : QStringLiteral("]"));
    }
    if (usesTolerance() && m_tolerance != 0.0)
        return tr("%1 %2 (%3%4)")
            .arg(m_compareOperator.getLabel(), value, QStringLiteral("+/-"),
                 numberText(m_tolerance));
    switch (m_compareOperator.toEnum()) {
    case CompareOperator::E_LESS_THAN:
        return tr("< %1").arg(value);
    case CompareOperator::E_GREATER_THAN:
        return tr("> %1").arg(value);
    case CompareOperator::E_NOT_EQUAL:
        return tr("!= %1").arg(value);
    default:
        return tr("%1 %2").arg(m_compareOperator.getLabel(), value);
    }
}

QString KufSampleFilterRuleNumeric::getDescription(const HbdVariableDetails& details) const
{
    return QLatin1Char('\'') + details.name + QLatin1String("' ") + describe();
}

QString KufSampleFilterRuleNumeric::getShortDescription(const HbdVariableDetails& details,
                                                        bool withVariableName) const
{
    return tr("%1 %2").arg(withVariableName ? details.name : tr("constraints:"), describeShortly());
}

QString KufSampleFilterRuleAlpha::getDescription(const HbdVariableDetails& details) const
{
    switch (m_mode.toEnum()) {
    case Mode::E_EQUAL_TO:
        return tr("'%1' is equal to '%2'").arg(details.name, m_equalTo);
    case Mode::E_NOT_EQUAL_TO:
        return tr("'%1' is not equal to '%2'").arg(details.name, m_notEqualTo);
    case Mode::E_CONTAINS:
        break;
    }
    return tr("'%1' contains '%2'").arg(details.name, m_contains);
}

QString KufSampleFilterRuleAlpha::getShortDescription(const HbdVariableDetails& details,
                                                      bool withVariableName) const
{
    const bool isEqual = m_mode == Mode::EQUAL_TO;
    if (!withVariableName) {
        if (m_mode == Mode::CONTAINS)
            return tr("contains '%1'").arg(m_contains);
        return isEqual ? tr("= '%1'").arg(m_equalTo) : tr("not= '%1'").arg(m_notEqualTo);
    }
    if (m_mode == Mode::CONTAINS)
        return tr("'%1' in '%2'").arg(m_contains, details.name);
    return isEqual ? tr("'%1' = '%2'").arg(details.name, m_equalTo)
                   : tr("'%1' not= '%2'").arg(details.name, m_notEqualTo);
}

QString KufSampleFilterRuleEnum::getDescription(const HbdVariableDetails& details) const
{
    if (m_selectedList.isEmpty())
        return tr("'%1' == ''").arg(details.name);
    if (m_selectedList.size() == 1)
        return tr("'%1' equals '%2'").arg(details.name, m_selectedList.first());
    return tr("'%1' is one of").arg(details.name) + QLatin1String(" '") +
           m_selectedList.join(QLatin1String("', '")) + QLatin1Char('\'');
}

QString KufSampleFilterRuleEnum::getShortDescription(const HbdVariableDetails& details,
                                                     bool withVariableName) const
{
    const QString name = withVariableName ? details.name + QLatin1Char(' ') : QString();
    if (m_selectedList.isEmpty())
        return name + tr("= ''");
    if (m_selectedList.size() == 1)
        return name + tr("= %1").arg(m_selectedList.first());
    return name + tr("in [") + m_selectedList.join(QLatin1String(", ")) + QLatin1Char(']');
}
