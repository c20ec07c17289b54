#include <basic/unit/HbuUnit.h>

#include "HbuUnitTable.h"

#include <QtCore/QCoreApplication>

struct HbuUnit::Data {
    QString key;
    QString name;
    QString symbol;
    HbuEUnitClass unitClass;
    HbuEUnitSystem unitSystem;
    HbuUnitTransfo transfo;
    const HbuUnitRow* row; // of a built-in unit; null for the user's

    bool operator==(const Data& o) const
    {
        return key == o.key && name == o.name && symbol == o.symbol && unitClass == o.unitClass &&
               unitSystem == o.unitSystem && transfo == o.transfo;
    }
};

HbuUnit::HbuUnit(const QString& key, const QString& name, const QString& symbol,
                 const HbuEUnitClass& unitClass, const HbuEUnitSystem& unitSystem,
                 const HbuUnitTransfo& transfo)
    : m_data(std::make_shared<const Data>(
          Data{key, name, symbol, unitClass, unitSystem, transfo, nullptr}))
{
}

HbuUnit::HbuUnit(const HbuUnitRow& row)
    : m_data(std::make_shared<const Data>(Data{
          QString::fromUtf8(row.key), QString::fromUtf8(row.name), QString::fromUtf8(row.symbol),
          HbuEUnitClass::fromValue(row.unitClass), HbuEUnitSystem::fromValue(row.unitSystem),
          HbuUnitTransfo::affineRatio(row.numerator, row.offset, row.denominator), &row}))
{
}

HbuUnit HbuUnit::none()
{
    static const HbuUnit unit(HbuUnitTable::NONE);
    return unit;
}

bool HbuUnit::isValid() const
{
    return m_data && !m_data->key.isEmpty() && m_data->transfo.isValid();
}

QString HbuUnit::getKey() const
{
    return m_data ? m_data->key : QString();
}

QString HbuUnit::getName() const
{
    if (!m_data)
        return {};
    return m_data->row ? QCoreApplication::translate("HbuUnit", m_data->row->name) : m_data->name;
}

QString HbuUnit::getSymbol() const
{
    return m_data ? m_data->symbol : QString();
}

HbuEUnitClass HbuUnit::getUnitClass() const
{
    return m_data ? m_data->unitClass : HbuEUnitClass::NONE;
}

HbuEUnitSystem HbuUnit::getUnitSystem() const
{
    return m_data ? m_data->unitSystem : HbuEUnitSystem::OTHER;
}

HbuUnitTransfo HbuUnit::getTransfo() const
{
    return m_data ? m_data->transfo : HbuUnitTransfo::invalid();
}

bool HbuUnit::isBuiltIn() const
{
    return m_data && m_data->row;
}

QString HbuUnit::getSource() const
{
    return isBuiltIn() ? QString::fromUtf8(m_data->row->source) : QString();
}

bool HbuUnit::operator==(const HbuUnit& other) const
{
    if (m_data == other.m_data)
        return true;
    return m_data && other.m_data && *m_data == *other.m_data;
}
