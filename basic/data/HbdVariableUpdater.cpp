#include <basic/data/HbdAVariable.h>
#include <basic/data/HbdVariableUpdater.h>

void HbdVariableUpdater::setValue(const QVariant& value)
{
    m_variable.setVariant(m_rank, value);
}
