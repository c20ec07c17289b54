#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDatasetVariable.h>

class KufISampleFilterRule;

/// What the visitors read of a sample filter: rules, each on a variable, and the text that combines
/// them. Rules are named by their position: "R1", "R2" …
class KELVANE_UTIL_EXPORT KufISampleFilter
{
public:
    virtual ~KufISampleFilter();

    virtual int getRuleCount() const = 0;

    /// Borrowed from the filter; null for an index that has no rule.
    virtual const KufISampleFilterRule* getRule(int index) const = 0;

    /// The variable that the rule was made for; empty for an index that has no rule.
    virtual KudDatasetVariable getVariable(int index) const = 0;

    /// How the rules are combined: rule names, "and", "or", "not" and parentheses. An empty text
    /// stands for the default combination, all rules (KufSampleFilterDefaultCombination).
    virtual QString getCombination() const = 0;

    /// "R1" for index 0.
    static QString getRuleName(int index);

protected:
    KufISampleFilter() = default;
    KufISampleFilter(const KufISampleFilter&) = default;
    KufISampleFilter& operator=(const KufISampleFilter&) = default;
};
