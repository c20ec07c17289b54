#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdAVariable.h>
#include <basic/data/HbdName.h>
#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

HbdAVariable::HbdAVariable(const HbdVariableDetails& details, const HbdEVarType& type)
    : m_details(details)
{
    m_details.type = type;
}

HbdAVariable::~HbdAVariable() = default;
HbdANumericVariable::~HbdANumericVariable() = default;

double HbdANumericVariable::getNumber(int rank) const
{
    double number = HbbGlobal::D_FFFF;
    readNumbers(rank, 1, &number);
    return number;
}

void HbdAVariable::setDetails(const HbdVariableDetails& details)
{
    const HbdEVarType type = m_details.type;
    m_details = details;
    m_details.type = type;
}

QString HbdAVariable::getFullName() const
{
    QString name = m_details.name;
    if (!m_index.isEmpty())
        name = Hbd::Name::Realization::getName(name, m_index);
    if (!m_component.isEmpty())
        name = Hbd::Name::Component::getName(name, m_component);
    return name;
}

bool HbdAVariable::isEqual(const HbdAVariable& other) const
{
    return m_details == other.m_details && m_index == other.m_index &&
           m_component == other.m_component && _hasEqualValues(other);
}

std::unique_ptr<HbdAVariable> HbdAVariable::create(const HbdVariableDetails& details)
{
    switch (details.type.toEnum()) {
    case HbdEVarType::E_REAL:
        return std::make_unique<HbdVariableReal>(details);
    case HbdEVarType::E_REAL_32:
        return std::make_unique<HbdVariableReal32>(details);
    case HbdEVarType::E_INTEGER:
        return std::make_unique<HbdVariableInteger>(details);
    case HbdEVarType::E_TEXT:
        return std::make_unique<HbdVariableText>(details);
    case HbdEVarType::E_CATEGORY:
        return std::make_unique<HbdVariableEnum>(details);
    case HbdEVarType::E_COLOR:
        return std::make_unique<HbdVariableColor>(details);
    case HbdEVarType::E_ALPHA_CHANNEL:
        return std::make_unique<HbdVariableAlpha>(details);
    case HbdEVarType::E_SELECTION:
        return std::make_unique<HbdVariableSelection>(details);
    case HbdEVarType::E_DATE:
        return std::make_unique<HbdVariableDate>(details);
    }
    HBE_PROGRAMMING_ERROR("data/HbdAVariable",
                          QCoreApplication::translate("HbdAVariable", "Unknown variable type '%1'.")
                              .arg(details.type.getKey()));
}
