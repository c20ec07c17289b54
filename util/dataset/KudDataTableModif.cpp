#include <util/dataset/KudDataTableModif.h>

KudDataTableModif::KudDataTableModif(KudTableModif data)
    : m_data(std::move(data))
{
}

KudDataTableModif::KudDataTableModif(KudTableModif::Reason reason,
                                     const KudDatasetVariable& variable,
                                     const HbiIntervalIntSmallDisjoint& ranks)
    : m_data(reason, variable, ranks)
{
}

int KudDataTableModif::getNumberOfModif() const
{
    return m_data.getNumberOfModif();
}

bool KudDataTableModif::isEmpty() const
{
    return m_data.isEmpty();
}

void KudDataTableModif::_merge(const KudDataTableModif& other)
{
    m_data.merge(other.m_data);
}
