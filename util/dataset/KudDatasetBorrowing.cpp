#include <util/dataset/KudDatasetBorrowing.h>
#include <util/dataset/KudDatasetRegistry.h>

#include "KudDatasetRegistryEntry.h"

#include <basic/base/HbbDebug.h>

KudDatasetBorrowing::KudDatasetBorrowing(const QString& key, const QString& borrower,
                                         bool (*isOfKind)(KudADataset*))
{
    if (!isOfKind(KudDatasetRegistry::getDataset(key)))
        return;
    m_entry = KudDatasetRegistry::_ref(key, borrower);
    m_borrower = borrower;
}

KudDatasetBorrowing::KudDatasetBorrowing(const KudDatasetBorrowing& other)
    : KudDatasetBorrowing(other, other.m_borrower)
{
}

KudDatasetBorrowing::KudDatasetBorrowing(const KudDatasetBorrowing& other, const QString& borrower)
    : m_entry(other.m_entry)
    , m_borrower(borrower)
{
    if (m_entry && m_entry->isHeld)
        KudDatasetRegistry::_ref(m_entry->key, borrower);
}

KudDatasetBorrowing& KudDatasetBorrowing::operator=(KudDatasetBorrowing other) noexcept
{
    swap(other);
    return *this;
}

KudDatasetBorrowing::~KudDatasetBorrowing()
{
    if (!m_entry || !m_entry->isHeld)
        return;
    // Taken out first: who asks from inside the notice finds this borrowing returned.
    const auto entry = std::move(m_entry);
    try {
        KudDatasetRegistry::_unref(entry->key, m_borrower);
    } catch (const std::exception& error) {
        HbbDebug::printWarning(QString::fromUtf8(error.what()));
    }
}

void KudDatasetBorrowing::swap(KudDatasetBorrowing& other) noexcept
{
    m_entry.swap(other.m_entry);
    m_borrower.swap(other.m_borrower);
}

KudADataset* KudDatasetBorrowing::dataset() const noexcept
{
    return m_entry ? m_entry->dataset.get() : nullptr;
}

QString KudDatasetBorrowing::key() const
{
    return m_entry ? m_entry->key : QString();
}
