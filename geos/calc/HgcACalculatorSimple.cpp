#include <geos/calc/HgcACalculatorSimple.h>

#include <geos/data/HgdADataSet.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

#include <algorithm>

HgcACalculatorSimple::~HgcACalculatorSimple() = default;

void HgcACalculatorSimple::addInputRule(const HgcInputRule& rule)
{
    const bool bounded = rule.maximum != HgcInputRule::NO_LIMIT;
    if (rule.minimum < 0 || (bounded && rule.maximum < rule.minimum)) {
        HBE_PROGRAMMING_ERROR(
            "calc/HgcACalculatorSimple",
            QCoreApplication::translate("HgcACalculatorSimple", "The limits %1 to %2 are not valid")
                .arg(rule.minimum)
                .arg(rule.maximum));
    }
    m_inputRules.push_back(rule);
}

int HgcACalculatorSimple::countVariables(const HgcInputRule& rule, const HgdADataSet& dataSet)
{
    const std::vector<const HbdAVariable*> variables = dataSet.getVariables(rule.role);
    const auto counts = [&](const HbdAVariable* variable) {
        return rule.types.isEmpty() || rule.types.contains(variable->getType().getKey());
    };
    return static_cast<int>(std::count_if(variables.begin(), variables.end(), counts));
}

QString HgcACalculatorSimple::_checkInputs() const
{
    for (const HgcInputRule& rule : m_inputRules) {
        const QString error = rule.check(_countInputs(rule));
        if (!error.isEmpty())
            return error;
    }
    return QString();
}
