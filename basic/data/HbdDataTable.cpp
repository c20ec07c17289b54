#include <basic/data/HbdDataTable.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>

#include <limits>

HbdDataTable::HbdDataTable() = default;
HbdDataTable::HbdDataTable(HbdDataTable&& other) noexcept = default;
HbdDataTable::~HbdDataTable() = default;

HbdDataTable::HbdDataTable(const HbdDataTable& other)
    : m_index(other.m_index)
    , m_sampleCount(other.m_sampleCount)
{
    m_variables.reserve(other.m_variables.size());
    for (const auto& variable : other.m_variables)
        m_variables.push_back(variable->clone());
}

HbdDataTable& HbdDataTable::operator=(HbdDataTable other) noexcept
{
    m_variables.swap(other.m_variables);
    m_index.swap(other.m_index);
    std::swap(m_sampleCount, other.m_sampleCount);
    std::swap(m_room, other.m_room);
    return *this;
}

HbdAVariable* HbdDataTable::findVariable(const QString& fullName)
{
    m_room = 0;
    const int i = indexOf(fullName);
    return i < 0 ? nullptr : getVariableAt(i);
}

const HbdAVariable* HbdDataTable::findVariable(const QString& fullName) const
{
    const int i = indexOf(fullName);
    return i < 0 ? nullptr : getVariableAt(i);
}

int HbdDataTable::indexOf(const QString& fullName) const
{
    return m_index.value(fullName, -1);
}

HbdAVariable* HbdDataTable::addVariable(std::unique_ptr<HbdAVariable>&& variable)
{
    const QString name = variable->getFullName();
    const bool isFirst = m_variables.empty() && m_sampleCount == 0;
    if (variable->getDetails().name.isEmpty() || m_index.contains(name) ||
        (!isFirst && variable->getCount() != m_sampleCount))
        return nullptr;

    m_sampleCount = variable->getCount();
    m_room = 0;
    m_index.insert(name, getVariableCount());
    m_variables.push_back(std::move(variable));
    return m_variables.back().get();
}

HbdAVariable* HbdDataTable::createVariable(const HbdVariableDetails& details)
{
    std::unique_ptr<HbdAVariable> variable = HbdAVariable::create(details);
    variable->resize(m_sampleCount);
    return addVariable(std::move(variable));
}

bool HbdDataTable::removeVariable(int i)
{
    if (i < 0 || i >= getVariableCount())
        return false;
    m_variables.erase(m_variables.begin() + i);
    rebuildIndex();
    return true;
}

bool HbdDataTable::renameVariable(int i, const QString& name)
{
    if (i < 0 || i >= getVariableCount() || name.isEmpty())
        return false;
    HbdAVariable& variable = *getVariableAt(i);
    const QString oldName = variable.getDetails().name;
    variable.setName(name);
    const int holder = indexOf(variable.getFullName());
    if (holder >= 0 && holder != i) {
        variable.setName(oldName);
        return false;
    }
    rebuildIndex();
    return true;
}

void HbdDataTable::reserveSamples(int count)
{
    if (count <= m_room)
        return;
    const qint64 grown = qint64(m_sampleCount) + m_sampleCount / 2;
    const int room =
        std::max(count, static_cast<int>(std::min<qint64>(grown, std::numeric_limits<int>::max())));
    for (const auto& variable : m_variables)
        variable->reserve(room);
    m_room = room;
}

void HbdDataTable::setSampleCount(int count)
{
    if (count > m_sampleCount)
        reserveSamples(count); // all of it, or no column grows
    for (const auto& variable : m_variables)
        variable->resize(count);
    m_sampleCount = count;
}

void HbdDataTable::insertSamples(int rank, int count)
{
    reserveSamples(m_sampleCount + count);
    for (const auto& variable : m_variables)
        variable->insertUndefined(rank, count);
    m_sampleCount += count;
}

void HbdDataTable::removeSamples(const HbiIntervalIntSmallDisjoint& ranks)
{
    int removed = 0;
    for (const HbiIntervalIntSmall& interval : ranks.intervals()) {
        const int first = std::max(interval.getMin(), 0);
        const int last = std::min(interval.getMax(), m_sampleCount - 1);
        removed += std::max(last - first + 1, 0);
    }
    for (const auto& variable : m_variables)
        variable->removeRanks(ranks);
    m_sampleCount -= removed;
}

void HbdDataTable::appendTable(const HbdDataTable& other, bool addMissing)
{
    if (other.m_sampleCount > std::numeric_limits<int>::max() - m_sampleCount) {
        throw HbeUserError(QCoreApplication::translate(
            "HbdDataTable", "A table cannot hold more than 2147483647 samples."));
    }
    const int variableCount = getVariableCount();
    const int total = m_sampleCount + other.m_sampleCount;
    try {
        appendColumns(other, total, addMissing);
    } catch (...) {
        m_variables.resize(static_cast<std::size_t>(variableCount));
        for (const auto& ours : m_variables)
            ours->resize(m_sampleCount);
        rebuildIndex();
        throw;
    }
    m_sampleCount = total;
}

void HbdDataTable::appendColumns(const HbdDataTable& other, int total, bool addMissing)
{
    if (addMissing) {
        for (const auto& theirs : other.m_variables) {
            if (indexOf(theirs->getFullName()) < 0) {
                std::unique_ptr<HbdAVariable> variable = theirs->createEmpty();
                variable->resize(m_sampleCount);
                addVariable(std::move(variable));
            }
        }
    }
    for (const auto& ours : m_variables) {
        if (const HbdAVariable* theirs = other.findVariable(ours->getFullName()))
            ours->append(*theirs);
        else
            ours->resize(total);
    }
}

void HbdDataTable::clear()
{
    m_variables.clear();
    m_index.clear();
    m_sampleCount = 0;
}

bool HbdDataTable::isEqual(const HbdDataTable& other) const
{
    return m_sampleCount == other.m_sampleCount &&
           std::equal(m_variables.begin(), m_variables.end(), other.m_variables.begin(),
                      other.m_variables.end(),
                      [](const auto& a, const auto& b) { return a->isEqual(*b); });
}

void HbdDataTable::rebuildIndex()
{
    m_index.clear();
    for (int i = 0; i < getVariableCount(); ++i)
        m_index.insert(getVariableAt(i)->getFullName(), i);
}
