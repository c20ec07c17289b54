#pragma once

#include <util/KuExport.h>

#include <QtCore/QHash>
#include <QtCore/QString>

#include <utility>

/// Names a column of a data table: the support it lives on, the variable, and for a variable of
/// many columns its realization index or its component. A value of four texts, compared
/// case-sensitively; the support dominates the order, which is that of every map of variables.
///
/// Two texts, the support and the variable, are needed; without them the name is not valid.
class KELVANE_UTIL_EXPORT KudDatasetVariable
{
public:
    KudDatasetVariable() = default;

    static KudDatasetVariable createVariable(const QString& support, const QString& variable)
    {
        return KudDatasetVariable(support, variable, QString(), QString());
    }
    static KudDatasetVariable createRealization(const QString& support, const QString& variable,
                                                const QString& index)
    {
        return KudDatasetVariable(support, variable, index, QString());
    }
    static KudDatasetVariable createComponent(const QString& support, const QString& variable,
                                              const QString& component)
    {
        return KudDatasetVariable(support, variable, QString(), component);
    }
    static KudDatasetVariable createComponent(const QString& support, const QString& variable,
                                              const QString& index, const QString& component)
    {
        return KudDatasetVariable(support, variable, index, component);
    }

    const QString& support() const { return m_support; }
    const QString& variable() const { return m_variable; }
    const QString& index() const { return m_index; }
    const QString& component() const { return m_component; }
    void setSupport(const QString& support) { m_support = support; }
    void setVariable(const QString& variable) { m_variable = variable; }

    bool isValid() const { return !m_support.isEmpty() && !m_variable.isEmpty(); }
    /// A plain variable: neither index nor component.
    bool isVariable() const { return m_index.isEmpty() && m_component.isEmpty(); }
    bool isRealization() const { return !m_index.isEmpty(); }
    bool isComponent() const { return !m_component.isEmpty(); }

    /// A copy with another variable name; support, index and component stay.
    KudDatasetVariable renamed(const QString& newName) const;

    /// The column's name: the variable's, joined with the index, then with the component, by the
    /// naming rules of the columns themselves.
    QString getFullVariableName() const;

    /// Whether `other` is a realization or a component of this plain variable.
    bool isChild(const KudDatasetVariable& other) const;

    bool operator==(const KudDatasetVariable& other) const
    {
        // The variable differs most often. Copies share their texts, so most equal ones are
        // recognised without reading a character.
        return _isSame(m_variable, other.m_variable) && _isSame(m_support, other.m_support) &&
               _isSame(m_index, other.m_index) && _isSame(m_component, other.m_component);
    }
    bool operator!=(const KudDatasetVariable& other) const { return !(*this == other); }
    bool operator<(const KudDatasetVariable& other) const;

private:
    KudDatasetVariable(const QString& support, const QString& variable, const QString& index,
                       const QString& component)
        : m_support(support)
        , m_variable(variable)
        , m_index(index)
        , m_component(component)
    {
    }
    static bool _isSame(const QString& a, const QString& b)
    {
        return a.size() == b.size() && (a.constData() == b.constData() || a == b);
    }

    QString m_support;
    QString m_variable;
    QString m_index;
    QString m_component;
};
Q_DECLARE_TYPEINFO(KudDatasetVariable, Q_MOVABLE_TYPE);

KELVANE_UTIL_EXPORT uint qHash(const KudDatasetVariable& variable, uint seed = 0);
