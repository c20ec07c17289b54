#include <geos/data/HgdADataSet.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

namespace
{
qint64 valueSize(const HbdEVarType& type)
{
    switch (type.toEnum()) {
    case HbdEVarType::E_REAL:
    case HbdEVarType::E_INTEGER:
    case HbdEVarType::E_DATE:
        return 8;
    case HbdEVarType::E_REAL_32:
    case HbdEVarType::E_COLOR:
        return 4;
    case HbdEVarType::E_CATEGORY:
        return 2;
    case HbdEVarType::E_ALPHA_CHANNEL:
    case HbdEVarType::E_SELECTION:
        return 1;
    case HbdEVarType::E_TEXT:
        break;
    }
    return sizeof(QString);
}
} // namespace

HgdADataSet::HgdADataSet(int sampleCount)
    : m_sampleCount(sampleCount)
{
    if (sampleCount < 0) {
        HBE_PROGRAMMING_ERROR(
            "data/HgdADataSet",
            QCoreApplication::translate("HgdADataSet", "The number of samples is negative"));
    }
}

HgdADataSet::~HgdADataSet() = default;

const QString& HgdADataSet::getDataRole()
{
    static const QString role = QStringLiteral("V");
    return role;
}

void HgdADataSet::addVariable(const HbdAVariable& values, const QString& role)
{
    checkLength(values);
    m_variables.push_back({&values, role});
}

void HgdADataSet::checkLength(const HbdAVariable& values) const
{
    if (values.getCount() == m_sampleCount)
        return;
    HBE_PROGRAMMING_ERROR(
        "data/HgdADataSet",
        QCoreApplication::translate("HgdADataSet", "The variable '%1' has %2 values for %3 samples")
            .arg(values.getFullName())
            .arg(values.getCount())
            .arg(m_sampleCount));
}

std::vector<const HbdAVariable*> HgdADataSet::getVariables(const QString& role) const
{
    std::vector<const HbdAVariable*> variables;
    for (const Variable& variable : m_variables) {
        if (variable.role == role)
            variables.push_back(variable.values);
    }
    return variables;
}

qint64 HgdADataSet::getSampleSize() const
{
    qint64 bytes = 0;
    for (const Variable& variable : m_variables)
        bytes += valueSize(variable.values->getType());
    return bytes;
}

void HgdADataSet::setSelection(const HbiIntervalIntSmallDisjoint& ranks)
{
    m_selection = ranks.intersected(HbiIntervalIntSmall(0, m_sampleCount - 1));
    m_hasSelection = true;
}

void HgdADataSet::removeSelection()
{
    m_selection.clear();
    m_hasSelection = false;
}
