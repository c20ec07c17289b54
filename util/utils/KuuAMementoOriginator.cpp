#include <util/utils/KuuAMementoOriginator.h>

#include <basic/base/HbbDebug.h>

#include <QtCore/QCoreApplication>

KuuAMementoOriginator::KuuAMementoOriginator(const QString& relation)
    : m_id(KuuId::generate(relation))
{
}

KuuAMementoOriginator::KuuAMementoOriginator(const KuuId& id)
    : m_id(id)
{
}

KuuAMementoOriginator::~KuuAMementoOriginator() = default;

KuuMemento KuuAMementoOriginator::getMemento() const
{
    KuuMemento memento(m_id);
    memento.setVersion(_getMementoVersion());
    _buildMemento(memento);
    return memento;
}

void KuuAMementoOriginator::setMemento(const KuuMemento& memento, bool adoptId)
{
    const QString& relation = memento.getId().getRelation();
    if (relation != m_id.getRelation()) {
        return;
    }

    // What a newer program wrote is still the user's work: take what is known rather than refuse.
    if (memento.getVersion() > _getMementoVersion()) {
        HbbDebug::printWarning(
            QCoreApplication::translate("KuuAMementoOriginator",
                                        "Memento '%1' of '%2' has version %3, newer than the known "
                                        "version %4: what is not known is left out.")
                .arg(memento.getId().getUuid(), relation)
                .arg(memento.getVersion())
                .arg(_getMementoVersion()));
    }

    // The memento may live in the state that is replaced now.
    const KuuMemento taken = memento;
    const KuuId ownId = m_id;
    if (adoptId) {
        m_id = taken.getId();
    }
    try {
        _setMemento(taken, adoptId);
    } catch (...) {
        m_id = ownId; // an object that was not restored stays the one that it was
        throw;
    }
}
