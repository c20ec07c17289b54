#include <basic/base/HbbDebug.h>
#include <basic/base/HbbEnumRegistry.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

using Lock = std::lock_guard<std::recursive_mutex>;

HbbEnumRegistry::HbbEnumRegistry(const char* className, const char* sourcePath,
                                 const HbbEnumItem* items, int count)
    : m_className(className)
    , m_sourcePath(sourcePath)
{
    for (int i = 0; i < count; ++i)
        insert(items + i);
}

int HbbEnumRegistry::getCount() const
{
    const Lock lock(m_mutex);
    return static_cast<int>(m_map.size());
}

QVector<const HbbEnumItem*> HbbEnumRegistry::getItems() const
{
    const Lock lock(m_mutex);
    QVector<const HbbEnumItem*> items;
    items.reserve(static_cast<int>(m_map.size()));
    for (const auto& entry : m_map)
        items.append(entry.second);
    return items;
}

QString HbbEnumRegistry::getLabel(const HbbEnumItem& item) const
{
    return QCoreApplication::translate(m_className, item.label);
}

const HbbEnumItem* HbbEnumRegistry::findKey(const QString& key) const
{
    const Lock lock(m_mutex);
    const QByteArray utf8 = key.toUtf8();
    for (const auto& entry : m_map) {
        if (utf8 == entry.second->key)
            return entry.second;
    }
    return nullptr;
}

const HbbEnumItem* HbbEnumRegistry::findLabel(const QString& label) const
{
    const Lock lock(m_mutex);
    for (const auto& entry : m_map) {
        if (label == getLabel(*entry.second))
            return entry.second;
    }
    return nullptr;
}

const HbbEnumItem* HbbEnumRegistry::findValue(int value) const
{
    const Lock lock(m_mutex);
    const auto found = m_map.find(value);
    return found == m_map.end() ? nullptr : found->second;
}

const HbbEnumItem* HbbEnumRegistry::getFromKey(const QString& key) const
{
    if (const HbbEnumItem* item = findKey(key))
        return item;
    raiseInvalid("fromKey(const QString&)", key);
}

const HbbEnumItem* HbbEnumRegistry::getFromLabel(const QString& label) const
{
    if (const HbbEnumItem* item = findLabel(label))
        return item;
    raiseInvalid("fromLabel(const QString&)", label);
}

const HbbEnumItem* HbbEnumRegistry::getFromValue(int value) const
{
    if (const HbbEnumItem* item = findValue(value))
        return item;
    raiseInvalid("fromValue(int)", QString::number(value));
}

void HbbEnumRegistry::registerItem(int value, const QString& key, const QString& label)
{
    const Lock lock(m_mutex);
    m_texts.push_back(key.toUtf8());
    const char* keyText = m_texts.back().constData();
    m_texts.push_back(label.toUtf8());
    m_ownedItems.push_back({value, keyText, m_texts.back().constData()});
    insert(&m_ownedItems.back());
}

void HbbEnumRegistry::insert(const HbbEnumItem* item)
{
    if (m_map.count(item->value) != 0) {
        HbbDebug::print(QString::asprintf("%s: duplicated item %s [%d=%s]!\n", m_className,
                                          item->label, item->value, item->key));
    }
    m_map[item->value] = item;
}

void HbbEnumRegistry::raiseInvalid(const char* operation, const QString& item) const
{
    const QByteArray signature = QByteArray(m_className) + "::" + operation;
    HbeProgrammingError::raise(
        signature, m_sourcePath,
        QCoreApplication::translate("HbbAEnum", "%1 is not valid").arg(item));
}
