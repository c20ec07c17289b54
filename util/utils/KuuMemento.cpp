#include <util/utils/KuuMemento.h>

#include <QtCore/QMap>
#include <QtCore/QSharedData>

#include <algorithm>

class KuuMementoData : public QSharedData
{
public:
    KuuId id;
    int version = KuuMemento::DEFAULT_VERSION;
    QVariantMap fields;
    QMap<QString, QList<KuuMemento>> associations;
    QList<KuuId> sharedIds;
};

namespace
{
// Empty mementos share one state, so that a default-constructed one allocates nothing.
const QSharedDataPointer<KuuMementoData>& emptyState()
{
    static const QSharedDataPointer<KuuMementoData> state(new KuuMementoData);
    return state;
}
} // namespace

KuuMemento::KuuMemento()
    : m_data(emptyState())
{
}

KuuMemento::KuuMemento(const KuuId& id)
    : m_data(new KuuMementoData)
{
    m_data->id = id;
}

KuuMemento::KuuMemento(const KuuId& id, const KuuMemento& other)
    : m_data(other.m_data)
{
    m_data->id = id;
}

KuuMemento::KuuMemento(const KuuMemento&) = default;
KuuMemento& KuuMemento::operator=(const KuuMemento&) = default;
KuuMemento::~KuuMemento() = default;

KuuMemento::KuuMemento(KuuMemento&& other) noexcept
    : m_data(emptyState())
{
    m_data.swap(other.m_data);
}

KuuMemento& KuuMemento::operator=(KuuMemento&& other) noexcept
{
    m_data.swap(other.m_data);
    return *this;
}

const KuuId& KuuMemento::getId() const
{
    return m_data->id;
}

int KuuMemento::getVersion() const
{
    return m_data->version;
}

void KuuMemento::setVersion(int version)
{
    m_data->version = version;
}

bool KuuMemento::isValid() const
{
    return m_data->id.isValid();
}

QVariant KuuMemento::getField(const QString& key) const
{
    return m_data->fields.value(key);
}

bool KuuMemento::hasField(const QString& key) const
{
    return m_data->fields.contains(key);
}

const QVariantMap& KuuMemento::getFields() const
{
    return m_data->fields;
}

void KuuMemento::setField(const QString& key, const QVariant& value)
{
    m_data->fields.insert(key, value);
}

void KuuMemento::setFields(const QVariantMap& fields)
{
    m_data->fields = fields;
}

void KuuMemento::removeField(const QString& key)
{
    m_data->fields.remove(key);
}

void KuuMemento::setAssociation(const KuuMemento& memento, bool shared)
{
    // A copy first: the memento may be this one, or one of its own associations.
    const KuuMemento added = memento;
    QList<KuuMemento>& list = m_data->associations[added.getId().getRelation()];
    const auto sameId = [&](const KuuMemento& m) { return m.getId() == added.getId(); };
    const auto found = std::find_if(list.begin(), list.end(), sameId);
    if (found == list.end()) {
        list.append(added);
    } else {
        *found = added;
    }
    if (shared && !m_data->sharedIds.contains(added.getId())) {
        m_data->sharedIds.append(added.getId());
    }
}

void KuuMemento::appendAssociation(const KuuMemento& memento)
{
    const KuuMemento added = memento;
    m_data->associations[added.getId().getRelation()].append(added);
}

QList<KuuMemento> KuuMemento::getAssociations(const QString& relation) const
{
    return m_data->associations.value(relation);
}

KuuMemento KuuMemento::getAssociation(const QString& relation) const
{
    return m_data->associations.value(relation).value(0);
}

bool KuuMemento::hasRelation(const QString& relation) const
{
    return m_data->associations.contains(relation);
}

QStringList KuuMemento::getRelations() const
{
    return m_data->associations.keys();
}

void KuuMemento::removeAssociations(const QString& relation)
{
    m_data->associations.remove(relation);
}

bool KuuMemento::isShared(const KuuId& id) const
{
    return m_data->sharedIds.contains(id);
}

const QList<KuuId>& KuuMemento::getSharedIds() const
{
    return m_data->sharedIds;
}

bool operator==(const KuuMemento& a, const KuuMemento& b)
{
    if (a.getId() != b.getId() || a.getVersion() != b.getVersion() ||
        a.getFields() != b.getFields() || a.getSharedIds() != b.getSharedIds() ||
        a.getRelations() != b.getRelations()) {
        return false;
    }
    const QStringList relations = a.getRelations();
    return std::all_of(relations.begin(), relations.end(), [&](const QString& relation) {
        return a.getAssociations(relation) == b.getAssociations(relation);
    });
}
