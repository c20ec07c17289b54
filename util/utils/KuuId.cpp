#include <util/utils/KuuId.h>

KuuId::KuuId(const QString& relation)
    : m_relation(relation)
{
}

KuuId::KuuId(const QString& relation, const QString& uuid)
    : m_relation(relation)
    , m_uuid(QUuid::fromString(uuid))
{
}

KuuId KuuId::generate(const QString& relation)
{
    return KuuId(relation, QUuid::createUuid().toString(QUuid::WithoutBraces));
}
