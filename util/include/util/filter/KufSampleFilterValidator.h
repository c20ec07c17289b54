#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDatasetVariable.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QStringList>

class HbdAVariable;
class KudADataTable;
class KudADataset;
class KufISampleFilter;
class KufISampleFilterRule;

/// Says whether a filter can be applied to variables of a dataset, one variable a rule, in rule
/// order: the combination is well formed, the variables are there, all on one support, each of a
/// kind that its rule can test; the categories that a rule names are in the catalogue; no rule
/// compares with an undefined number. All rules count, whether the combination names them or not.
///
/// A filter without rules applies to every dataset that has a table.
class KELVANE_UTIL_EXPORT KufSampleFilterValidator
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterValidator)

public:
    /// All are borrowed, for the time of the call.
    KufSampleFilterValidator(const KufISampleFilter* filter, const KudADataset* dataset,
                             const QList<KudDatasetVariable>& variables);

    bool isValid() const { return m_errors.isEmpty(); }

    /// Everything that is wrong, in rule order; each text names the rule and its variable:
    /// "R2: the variable 'zinc' is not in the dataset.".
    const QStringList& getErrors() const { return m_errors; }

    /// Raises a user error unless the filter is valid: "Cannot apply filters from different
    /// supports." if that is so, else all errors, a line each.
    void requireValid() const;

    /// The table whose samples are filtered; null when the filter is not valid.
    const KudADataTable* getTable() const { return isValid() ? m_table : nullptr; }

    /// What is wrong with a rule on a column, as the end of a sentence that begins with the
    /// variable; empty when nothing is.
    static QString findFault(const KufISampleFilterRule& rule, const HbdAVariable& column);

private:
    void checkRule(const KufISampleFilterRule& rule, const QString& ruleName,
                   const KudADataset& dataset, const KudDatasetVariable& variable);

    QStringList m_errors;
    const KudADataTable* m_table = nullptr;
    bool m_hasDifferentSupports = false;
};
