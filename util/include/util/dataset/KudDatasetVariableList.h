#pragma once

#include <util/dataset/KudDatasetVariable.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/// Names of variables in the order of their insertion: all valid, none twice. A value, implicitly
/// shared. Appending, `contains` and `indexOf` take constant time on average, however long the
/// list; removing and renaming are linear.
///
/// Where a name may be given loosely (`exact` false), a realization or a component is also found
/// when its plain variable is listed, or when its index or its component is listed under the same
/// support and name.
class KELVANE_UTIL_EXPORT KudDatasetVariableList
{
public:
    KudDatasetVariableList() = default;
    KudDatasetVariableList(const KudDatasetVariable& variable);
    KudDatasetVariableList(const QList<KudDatasetVariable>& variables);

    /// A variable that is not valid, or is in the list already, is passed over.
    void append(const KudDatasetVariable& variable);
    void append(const KudDatasetVariableList& variables);
    void append(const QList<KudDatasetVariable>& variables);
    /// Both do the same, for a list holds a variable once.
    void remove(const KudDatasetVariable& variable);
    void removeAll(const KudDatasetVariable& variable) { remove(variable); }
    void clear() { *this = KudDatasetVariableList(); }

    /// Renames the variable and each of its realizations and components where they stand. One that
    /// would become the same as an earlier member is dropped. An empty name changes nothing.
    void updateVariableName(const KudDatasetVariable& variable, const QString& newName);
    void sort();

    int count() const { return m_variables.size(); }
    bool isEmpty() const { return m_variables.isEmpty(); }
    const KudDatasetVariable& at(int i) const { return m_variables.at(i); }
    const KudDatasetVariable& first() const { return m_variables.first(); }
    const KudDatasetVariable& last() const { return m_variables.last(); }
    QVector<KudDatasetVariable>::const_iterator begin() const { return m_variables.constBegin(); }
    QVector<KudDatasetVariable>::const_iterator end() const { return m_variables.constEnd(); }
    QList<KudDatasetVariable> toList() const { return m_variables.toList(); }

    bool contains(const KudDatasetVariable& variable, bool exact = true) const;
    /// The exact position, or -1.
    int indexOf(const KudDatasetVariable& variable) const;
    /// The first position with that variable name, whatever its support, index and component, or
    /// -1.
    int indexOf(const QString& name) const;
    /// The member that the variable designates: itself, else its plain variable, else the first
    /// member with its index, else the first with its component; an empty variable when none does.
    KudDatasetVariable fix(const KudDatasetVariable& variable) const;

    /// The first member of that name in whatever support, or an empty variable: a plain one, a
    /// realization without component, a component without index.
    KudDatasetVariable getVariable(const QString& name) const;
    KudDatasetVariable getRealization(const QString& variable, const QString& index) const;
    KudDatasetVariable getComponent(const QString& variable, const QString& component) const;

    /// The supports, sorted.
    QStringList getSupports() const { return m_supports.keys(); }
    bool isMonoSupport() const { return m_supports.count() <= 1; }
    /// The variable names of a support, sorted.
    QStringList getVariables(const QString& support) const;
    /// The indices, the components, in the order they were met.
    QStringList getIndices(const QString& support, const QString& variable) const;
    QStringList getComponents(const QString& support, const QString& variable) const;

    /// The members that the other list contains, in the order of this list.
    KudDatasetVariableList intersection(const KudDatasetVariableList& other, bool exact) const;
    bool intersects(const KudDatasetVariableList& other, bool exact) const;

    bool operator==(const KudDatasetVariableList& other) const { return _isEqual(other); }
    bool operator!=(const KudDatasetVariableList& other) const { return !_isEqual(other); }

private:
    /// Distinct texts in the order they were met.
    struct Texts {
        void add(const QString& text);
        bool contains(const QString& text) const;

        QStringList ordered;
        QSet<QString> known; // empty while the texts are few
    };
    struct Names {
        Texts indices;
        Texts components;
    };

    bool _isEqual(const KudDatasetVariableList& other) const;
    bool _isIndexed() const { return !m_positions.isEmpty(); }
    void _appendNew(const KudDatasetVariable& variable);
    void _enterPosition(int position);
    void _resetPositions();
    void _resetMap();
    const Names* _findNames(const QString& support, const QString& variable) const;
    template <class Make>
    KudDatasetVariable _firstOfSupports(const Make& make) const;

    QMap<QString, QMap<QString, Names>> m_supports; // by support, then by variable name
    QVector<KudDatasetVariable> m_variables;
    // Only lists that are not short are indexed: by variable, and by name the first position.
    QHash<KudDatasetVariable, int> m_positions;
    QHash<QString, int> m_firstOfName;
};
