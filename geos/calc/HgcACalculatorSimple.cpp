#include <geos/calc/HgcACalculatorSimple.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

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

QString HgcACalculatorSimple::_checkInputs() const
{
    for (const HgcInputRule& rule : m_inputRules) {
        const QString error = rule.check(_countInputs(rule));
        if (!error.isEmpty())
            return error;
    }
    return QString();
}
