#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/filter/KufISampleFilter.h>
#include <util/filter/KufSampleFilterCombinationValidator.h>
#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>
#include <util/filter/KufSampleFilterValidator.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/error/HbeUserError.h>

#include <algorithm>

namespace
{
QString differentSupports()
{
    return QCoreApplication::translate("KufSampleFilterValidator",
                                       "Cannot apply filters from different supports.");
}

bool isNumber(const HbdEVarType& type)
{
    switch (type.toEnum()) {
    case HbdEVarType::E_REAL:
    case HbdEVarType::E_REAL_32:
    case HbdEVarType::E_INTEGER:
    case HbdEVarType::E_ALPHA_CHANNEL:
    case HbdEVarType::E_SELECTION:
    case HbdEVarType::E_DATE:
        return true;
    default:
        return false;
    }
}

bool hasUndefinedNumber(const KufSampleFilterRuleNumeric& rule)
{
    using Mode = KufSampleFilterRuleNumeric::Mode;
    if (rule.getMode() == Mode::COMPARE)
        return HbbGlobal::isUndefined(rule.getCompareValue()) ||
               (rule.usesTolerance() && HbbGlobal::isUndefined(rule.getTolerance()));
    return rule.getMode() == Mode::RANGE && (HbbGlobal::isUndefined(rule.getLowerBound()) ||
                                             HbbGlobal::isUndefined(rule.getUpperBound()));
}

QString labelsText(const HbdEnumCatalog& catalog)
{
    constexpr int SHOWN = 12;
    QStringList labels;
    for (const HbdEnumCatalog::Category& category : catalog.getCategories()) {
        if (labels.size() == SHOWN) {
            labels.append(QStringLiteral("…"));
            break;
        }
        labels.append(QLatin1Char('\'') + category.label + QLatin1Char('\''));
    }
    return labels.isEmpty() ? QCoreApplication::translate("KufSampleFilterValidator", "none")
                            : labels.join(QStringLiteral(", "));
}

/// The object table, or the first; what a filter without rules applies to.
const KudADataTable* mainTableOf(const KudADataset& dataset)
{
    const KudADataTable* objects = dataset.getObjectTable();
    return objects != nullptr || dataset.getTableCount() == 0 ? objects : dataset.getTableAt(0);
}
} // namespace

KufSampleFilterValidator::KufSampleFilterValidator(const KufISampleFilter* filter,
                                                   const KudADataset* dataset,
                                                   const QList<KudDatasetVariable>& variables)
{
    const KufSampleFilterCombinationValidator combination(filter);
    if (!combination.isValid())
        m_errors.append(combination.getError());
    if (dataset == nullptr) {
        m_errors.append(tr("There is no dataset to filter."));
        return;
    }
    const int count = filter == nullptr ? 0 : filter->getRuleCount();
    for (int i = 0; i < count; ++i) {
        const QString name = KufISampleFilter::getRuleName(i);
        if (filter->getRule(i) == nullptr)
            m_errors.append(tr("%1: the rule is missing.").arg(name));
        else if (i >= variables.size() || !variables.at(i).isValid())
            m_errors.append(tr("%1: the rule has no variable.").arg(name));
        else
            checkRule(*filter->getRule(i), name, *dataset, variables.at(i));
    }
    if (m_hasDifferentSupports)
        m_errors.append(differentSupports());
    if (count == 0)
        m_table = mainTableOf(*dataset);
    if (m_table == nullptr && isValid())
        m_errors.append(tr("The dataset has no table to filter."));
}

void KufSampleFilterValidator::checkRule(const KufISampleFilterRule& rule, const QString& ruleName,
                                         const KudADataset& dataset,
                                         const KudDatasetVariable& variable)
{
    const KudADataTable* table = dataset.getTable(variable.support());
    m_hasDifferentSupports =
        m_hasDifferentSupports || table == nullptr || (m_table != nullptr && table != m_table);
    m_table = table == nullptr ? m_table : table;
    const HbdAVariable* column = table != nullptr && table->containsVariable(variable)
                                     ? table->readValues(variable)
                                     : nullptr;
    const QString fault =
        column == nullptr ? tr("is not in the dataset.") : findFault(rule, *column);
    if (!fault.isEmpty())
        m_errors.append(
            tr("%1: the variable '%2' %3").arg(ruleName, variable.getFullVariableName(), fault));
}

QString KufSampleFilterValidator::findFault(const KufISampleFilterRule& rule,
                                            const HbdAVariable& column)
{
    const HbdEVarType& type = column.getType();
    if (const auto* numeric = dynamic_cast<const KufSampleFilterRuleNumeric*>(&rule)) {
        if (numeric->getMode() != KufSampleFilterRuleNumeric::Mode::IS_DEFINED && !isNumber(type))
            return tr("is not a number.");
        return hasUndefinedNumber(*numeric) ? tr("is compared with an undefined number.")
                                            : QString();
    }
    if (dynamic_cast<const KufSampleFilterRuleSelection*>(&rule) != nullptr)
        return type == HbdEVarType::SELECTION ? QString() : tr("is not a selection.");
    if (dynamic_cast<const KufSampleFilterRuleAlpha*>(&rule) != nullptr)
        return type == HbdEVarType::TEXT ? QString() : tr("is not a text.");
    const auto* categories = dynamic_cast<const KufSampleFilterRuleEnum*>(&rule);
    if (categories == nullptr)
        return tr("has a rule of a kind that is not known.");
    if (type != HbdEVarType::CATEGORY)
        return tr("is not a category.");
    const HbdEnumCatalog& catalog = static_cast<const HbdVariableEnum&>(column).getCatalog();
    for (const QString& name : categories->getSelectedList()) {
        if (!catalog.containsLabel(name))
            return tr("has no category '%1'; it has %2.").arg(name, labelsText(catalog));
    }
    return QString();
}

void KufSampleFilterValidator::requireValid() const
{
    if (m_hasDifferentSupports)
        throw HbeUserError(differentSupports());
    if (!isValid())
        throw HbeUserError(m_errors.join(QLatin1Char('\n')));
}
