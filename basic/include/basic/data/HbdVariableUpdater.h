#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QVariant>

class HbdAVariable;

/// Writes single cells into one column: place it with setRank, then give the value. The column is
/// borrowed. What an invalid variant stores is the column's own rule.
class KELVANE_BASIC_EXPORT HbdVariableUpdater
{
public:
    explicit HbdVariableUpdater(HbdAVariable& variable)
        : m_variable(variable)
    {
    }

    void setRank(int rank) { m_rank = rank; }
    void setValue(const QVariant& value);

private:
    HbdAVariable& m_variable;
    int m_rank = 0;
};
