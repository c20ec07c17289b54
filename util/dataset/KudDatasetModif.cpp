#include <util/dataset/KudDatasetModif.h>

KudDatasetModif::KudDatasetModif(Reason reason)
    : m_reasons(reason)
{
}

KudDatasetModif::KudDatasetModif(Reason reason, const QString& tableName)
    : m_reasons(reason)
{
    m_names.insert(reason, QStringList(tableName));
}

KudDatasetModif::KudDatasetModif(const KudADataTable* table, KudTableModif modif)
    : m_reasons(TableModified)
{
    m_tables.insert(table, std::move(modif));
}

KudDatasetModif::KudDatasetModif(const KudADataTable* table, KudTableModif::Reason reason,
                                 const KudDatasetVariable& variable,
                                 const HbiIntervalIntSmallDisjoint& ranks)
    : KudDatasetModif(table, KudTableModif(reason, variable, ranks))
{
}

void KudDatasetModif::merge(const KudDatasetModif& other)
{
    if (m_reasons == Reset || other.m_reasons == Reset) {
        _reset();
        return;
    }
    if (other.m_reasons & (TableAdded | TableRemoved)) {
        _mergeNames(other);
    }
    if (other.testReason(TableModified)) {
        for (const auto& entry : other.m_tables) {
            if (KudTableModif* modif = m_tables.find(entry.key)) {
                modif->merge(entry.value);
            } else {
                m_tables.insert(entry.key, entry.value);
            }
        }
    }
    m_reasons |= other.m_reasons;
}

int KudDatasetModif::getNumberOfModif() const
{
    return m_reasons == Reset ? 1 : m_tables.size() + m_names.size();
}

KudTableModif KudDatasetModif::modifForTable(const KudADataTable* table) const
{
    const KudTableModif* modif = m_tables.find(table);
    return modif ? *modif : KudTableModif();
}

void KudDatasetModif::_reset()
{
    m_reasons = Reset;
    m_tables.clear();
    m_names.clear();
}

void KudDatasetModif::_mergeNames(const KudDatasetModif& other)
{
    const QMap<Reason, QStringList> later = other.m_names;
    for (auto it = later.begin(); it != later.end(); ++it) {
        QStringList& mine = m_names[it.key()];
        const auto isNew = [&mine](const QString& name) { return !mine.contains(name); };
        if (std::any_of(it.value().begin(), it.value().end(), isNew)) {
            mine += it.value();
        }
    }
}
