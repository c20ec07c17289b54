#include "KuuGeometryMemento.h"
#include "KuuGeometryOverloads.h"

#include <util/utils/KuuGeometrySet.h>

#include <basic/error/HbeError.h>

namespace
{
const QString KIND = QStringLiteral("kind");
const QString DIMENSION = QStringLiteral("dimension");

/// The item of an enumeration that a field names.
template <class Enum>
Enum readItem(const QVariantMap& map, const QString& key)
{
    const QString itemKey = map.value(key).toString();
    KuuGeometryMemento::require(Enum::existsKey(itemKey));
    return Enum::fromKey(itemKey);
}
} // namespace

QVariantMap KuuGeometrySet::toVariantMap() const
{
    QVariantMap map{{KIND, m_kind.getKey()}};
    if (isValid())
        map[DIMENSION] = getDimension().getKey();
    std::visit(KuuGeometryOverloads{
                   [](const std::monostate&) {},
                   [&map](const auto& container) { KuuGeometryMemento::encode(container, map); },
               },
               m_geometry);
    return map;
}

KuuGeometrySet KuuGeometrySet::fromVariantMap(const QVariantMap& map, bool* ok)
{
    bool isWhole = false;
    KuuGeometrySet set;
    try {
        set.m_kind = readItem<HbgEGeometrySet>(map, KIND);
        if (set.m_kind != HbgEGeometrySet::NONE) {
            const auto dimension = readItem<HbgEDimension>(map, DIMENSION);
            set = KuuGeometrySet(set.m_kind, dimension);
            KuuGeometryMemento::require(set.getDimension() == dimension);
        }
        std::visit(KuuGeometryOverloads{
                       // Whatever else is there cannot be held.
                       [&](std::monostate&) { KuuGeometryMemento::require(map.size() == 1); },
                       [&](auto& container) { KuuGeometryMemento::decode(map, container); },
                   },
                   set.m_geometry);
        isWhole = true;
    } catch (const KuuGeometryMemento::NotWhole&) {
    } catch (const HbeError&) { // a packed text that is damaged
    } catch (const std::bad_alloc&) {
    }
    if (ok)
        *ok = isWhole;
    return isWhole ? set : KuuGeometrySet();
}
