#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QString>
#include <QtCore/QVector>

#include <deque>
#include <map>
#include <mutex>

/// One item of an enumeration. The texts are UTF-8 and live as long as the item.
struct HbbEnumItem {
    int value;
    const char* key;
    const char* label; ///< in the source language; translated when shown
};

/// The items of one enumeration class, by value; see HbbAEnum. Any thread may use it.
class KELVANE_BASIC_EXPORT HbbEnumRegistry
{
public:
    /// `className` and `sourcePath` go into messages; `className` is the translation context, too.
    HbbEnumRegistry(const char* className, const char* sourcePath, const HbbEnumItem* items,
                    int count);
    HbbEnumRegistry(const HbbEnumRegistry&) = delete;
    HbbEnumRegistry& operator=(const HbbEnumRegistry&) = delete;

    int getCount() const;
    QVector<const HbbEnumItem*> getItems() const;
    QString getLabel(const HbbEnumItem& item) const;

    /// The item, or null.
    const HbbEnumItem* findKey(const QString& key) const;
    const HbbEnumItem* findLabel(const QString& label) const;
    const HbbEnumItem* findValue(int value) const;

    /// The item; an unknown one is a programming error.
    const HbbEnumItem* getFromKey(const QString& key) const;
    const HbbEnumItem* getFromLabel(const QString& label) const;
    const HbbEnumItem* getFromValue(int value) const;

    /// Adds an item; a value that is taken prints a debug message, and the later item wins.
    void registerItem(int value, const QString& key, const QString& label);

private:
    void insert(const HbbEnumItem* item);
    [[noreturn]] void raiseInvalid(const char* operation, const QString& item) const;

    const char* m_className;
    const char* m_sourcePath;
    mutable std::recursive_mutex m_mutex;
    std::map<int, const HbbEnumItem*> m_map;
    std::deque<QByteArray> m_texts;       // of the items registered at run time
    std::deque<HbbEnumItem> m_ownedItems; // likewise
};
