#include <util/dataset/KudDatasetVariable.h>

#include <basic/data/HbdName.h>

KudDatasetVariable KudDatasetVariable::renamed(const QString& newName) const
{
    return KudDatasetVariable(m_support, newName, m_index, m_component);
}

QString KudDatasetVariable::getFullVariableName() const
{
    QString name = m_variable;
    if (isRealization()) {
        name = Hbd::Name::Realization::getName(name, m_index);
    }
    if (isComponent()) {
        name = Hbd::Name::Component::getName(name, m_component);
    }
    return name;
}

bool KudDatasetVariable::isChild(const KudDatasetVariable& other) const
{
    return isVariable() && !other.isVariable() && _isSame(m_variable, other.m_variable) &&
           _isSame(m_support, other.m_support);
}

bool KudDatasetVariable::operator<(const KudDatasetVariable& other) const
{
    if (!_isSame(m_support, other.m_support)) {
        return m_support < other.m_support;
    }
    if (!_isSame(m_variable, other.m_variable)) {
        return m_variable < other.m_variable;
    }
    if (!_isSame(m_index, other.m_index)) {
        return m_index < other.m_index;
    }
    return m_component < other.m_component;
}

uint qHash(const KudDatasetVariable& variable, uint seed)
{
    // Most names are plain: their two empty texts need no pass.
    uint hash = qHash(variable.variable(), qHash(variable.support(), seed));
    if (variable.isRealization()) {
        hash = qHash(variable.index(), hash + 1);
    }
    if (variable.isComponent()) {
        hash = qHash(variable.component(), hash + 2);
    }
    return hash;
}
