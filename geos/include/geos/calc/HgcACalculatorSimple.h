#pragma once

#include <geos/calc/HgcACalculator.h>
#include <geos/calc/HgcInputRule.h>

#include <vector>

class HgdADataSet;

/// A calculator whose inputs are variables by role: it declares rules in its constructor and counts
/// the variables that it was given for each; the rest is `_compute`.
class KELVANE_GEOS_EXPORT HgcACalculatorSimple : public HgcACalculator
{
    Q_OBJECT

public:
    using HgcACalculator::HgcACalculator;
    ~HgcACalculatorSimple() override;

    const std::vector<HgcInputRule>& getInputRules() const { return m_inputRules; }

protected:
    /// A minimum below 0, or a maximum below the minimum that is not NO_LIMIT, is a programming
    /// error.
    void addInputRule(const HgcInputRule& rule);

    /// How many of the given variables fall under the rule.
    virtual int _countInputs(const HgcInputRule& rule) const = 0;

    /// How many variables of the data set fall under the rule.
    static int countVariables(const HgcInputRule& rule, const HgdADataSet& dataSet);

    /// The first rule that is not satisfied speaks.
    QString _checkInputs() const override;

private:
    std::vector<HgcInputRule> m_inputRules;
};
