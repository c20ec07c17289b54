#include <util/dataset/KudDatasetVariableList.h>

#include <algorithm>

namespace
{
// Up to here a walk is faster than a hash, and costs no memory.
constexpr int MAX_WALKED = 16;
} // namespace

void KudDatasetVariableList::Texts::add(const QString& text)
{
    if (text.isEmpty() || contains(text)) {
        return;
    }
    ordered.append(text);
    if (!known.isEmpty()) {
        known.insert(text);
    } else if (ordered.size() > MAX_WALKED) {
        known = QSet<QString>(ordered.cbegin(), ordered.cend());
    }
}

bool KudDatasetVariableList::Texts::contains(const QString& text) const
{
    return known.isEmpty() ? ordered.contains(text) : known.contains(text);
}

KudDatasetVariableList::KudDatasetVariableList(const KudDatasetVariable& variable)
{
    append(variable);
}

KudDatasetVariableList::KudDatasetVariableList(const QList<KudDatasetVariable>& variables)
{
    append(variables);
}

void KudDatasetVariableList::append(const KudDatasetVariable& variable)
{
    if (variable.isValid() && indexOf(variable) < 0) {
        _appendNew(variable);
    }
}

void KudDatasetVariableList::append(const KudDatasetVariableList& variables)
{
    if (isEmpty()) {
        *this = variables;
        return;
    }
    const QVector<KudDatasetVariable> added = variables.m_variables; // the list may be this one
    for (const KudDatasetVariable& variable : added) {
        append(variable);
    }
}

void KudDatasetVariableList::append(const QList<KudDatasetVariable>& variables)
{
    for (const KudDatasetVariable& variable : variables) {
        append(variable);
    }
}

void KudDatasetVariableList::remove(const KudDatasetVariable& variable)
{
    const int position = indexOf(variable);
    if (position >= 0) {
        m_variables.removeAt(position);
        _resetMap();
    }
}

void KudDatasetVariableList::updateVariableName(const KudDatasetVariable& variable,
                                                const QString& newName)
{
    if (newName.isEmpty()) {
        return;
    }
    const KudDatasetVariable renamed = variable; // may be a member of this list
    for (KudDatasetVariable& member : m_variables) {
        if (member == renamed || renamed.isChild(member)) {
            member.setVariable(newName);
        }
    }
    _resetMap();
}

void KudDatasetVariableList::sort()
{
    std::sort(m_variables.begin(), m_variables.end());
    _resetPositions();
}

bool KudDatasetVariableList::contains(const KudDatasetVariable& variable, bool exact) const
{
    if (indexOf(variable) >= 0) {
        return true;
    }
    if (exact || variable.isVariable()) {
        return false;
    }
    const Names* names = _findNames(variable.support(), variable.variable());
    return names && (names->indices.contains(variable.index()) ||
                     names->components.contains(variable.component()) ||
                     indexOf(KudDatasetVariable::createVariable(variable.support(),
                                                                variable.variable())) >= 0);
}

int KudDatasetVariableList::indexOf(const KudDatasetVariable& variable) const
{
    return _isIndexed() ? m_positions.value(variable, -1) : m_variables.indexOf(variable);
}

int KudDatasetVariableList::indexOf(const QString& name) const
{
    if (_isIndexed()) {
        return m_firstOfName.value(name, -1);
    }
    const auto isNamed = [&name](const KudDatasetVariable& v) { return v.variable() == name; };
    const auto found = std::find_if(begin(), end(), isNamed);
    return found == end() ? -1 : static_cast<int>(found - begin());
}

KudDatasetVariable KudDatasetVariableList::fix(const KudDatasetVariable& variable) const
{
    if (indexOf(variable) >= 0) {
        return variable;
    }
    if (!contains(variable, false)) {
        return KudDatasetVariable();
    }
    const auto parent = KudDatasetVariable::createVariable(variable.support(), variable.variable());
    if (indexOf(parent) >= 0) {
        return parent;
    }
    const auto hasIndex = [&](const KudDatasetVariable& member) {
        return parent.isChild(member) && variable.isRealization() &&
               member.index() == variable.index();
    };
    const auto hasComponent = [&](const KudDatasetVariable& member) {
        return parent.isChild(member) && variable.isComponent() &&
               member.component() == variable.component();
    };
    const auto found = std::find_if(begin(), end(), hasIndex);
    return found != end() ? *found : *std::find_if(begin(), end(), hasComponent);
}

/// Of the names that `make` gives for each support, the one listed first.
template <class Make>
KudDatasetVariable KudDatasetVariableList::_firstOfSupports(const Make& make) const
{
    int first = count();
    for (auto support = m_supports.keyBegin(); support != m_supports.keyEnd(); ++support) {
        const int position = indexOf(make(*support));
        if (position >= 0) {
            first = std::min(first, position);
        }
    }
    return m_variables.value(first);
}

KudDatasetVariable KudDatasetVariableList::getVariable(const QString& name) const
{
    return _firstOfSupports(
        [&](const QString& support) { return KudDatasetVariable::createVariable(support, name); });
}

KudDatasetVariable KudDatasetVariableList::getRealization(const QString& variable,
                                                          const QString& index) const
{
    return _firstOfSupports([&](const QString& support) {
        return KudDatasetVariable::createRealization(support, variable, index);
    });
}

KudDatasetVariable KudDatasetVariableList::getComponent(const QString& variable,
                                                        const QString& component) const
{
    return _firstOfSupports([&](const QString& support) {
        return KudDatasetVariable::createComponent(support, variable, component);
    });
}

QStringList KudDatasetVariableList::getVariables(const QString& support) const
{
    return m_supports.value(support).keys();
}

QStringList KudDatasetVariableList::getIndices(const QString& support,
                                               const QString& variable) const
{
    const Names* names = _findNames(support, variable);
    return names ? names->indices.ordered : QStringList();
}

QStringList KudDatasetVariableList::getComponents(const QString& support,
                                                  const QString& variable) const
{
    const Names* names = _findNames(support, variable);
    return names ? names->components.ordered : QStringList();
}

KudDatasetVariableList KudDatasetVariableList::intersection(const KudDatasetVariableList& other,
                                                            bool exact) const
{
    KudDatasetVariableList common;
    for (const KudDatasetVariable& variable : m_variables) {
        if (other.contains(variable, exact)) {
            common._appendNew(variable);
        }
    }
    return common;
}

bool KudDatasetVariableList::intersects(const KudDatasetVariableList& other, bool exact) const
{
    return std::any_of(begin(), end(), [&](const KudDatasetVariable& variable) {
        return other.contains(variable, exact);
    });
}

bool KudDatasetVariableList::_isEqual(const KudDatasetVariableList& other) const
{
    return m_variables == other.m_variables;
}

void KudDatasetVariableList::_appendNew(const KudDatasetVariable& variable)
{
    m_variables.append(variable);
    Names& names = m_supports[variable.support()][variable.variable()];
    names.indices.add(variable.index());
    names.components.add(variable.component());
    if (_isIndexed()) {
        _enterPosition(count() - 1);
    } else if (count() > MAX_WALKED) {
        _resetPositions();
    }
}

void KudDatasetVariableList::_enterPosition(int position)
{
    const KudDatasetVariable& variable = m_variables.at(position);
    m_positions.insert(variable, position);
    if (!m_firstOfName.contains(variable.variable())) {
        m_firstOfName.insert(variable.variable(), position);
    }
}

void KudDatasetVariableList::_resetPositions()
{
    m_positions.clear();
    m_firstOfName.clear();
    if (count() > MAX_WALKED) {
        for (int i = 0; i < count(); ++i) {
            _enterPosition(i);
        }
    }
}

void KudDatasetVariableList::_resetMap()
{
    const QVector<KudDatasetVariable> variables = m_variables;
    clear();
    for (const KudDatasetVariable& variable : variables) {
        append(variable);
    }
}

const KudDatasetVariableList::Names*
KudDatasetVariableList::_findNames(const QString& support, const QString& variable) const
{
    const auto inSupport = m_supports.constFind(support);
    if (inSupport == m_supports.constEnd()) {
        return nullptr;
    }
    const auto names = inSupport->constFind(variable);
    return names == inSupport->constEnd() ? nullptr : &*names;
}
