#pragma once

#include <basic/base/HbbEnumRegistry.h>
#include <basic/base/HbbExport.h>

#include <QtCore/QString>

#include <type_traits>

/// A rich enumeration: an item has an integer value, a persistent key and a translatable label.
///
/// An enumeration is one table of rows, in its header, and one line in its source file (the lines
/// of the table end with a backslash, as those of any macro):
///
///     #define KUE_DECIMAL_SEPARATOR(ROW, Class)
///         ROW(Class, DOT, 0, QT_TRANSLATE_NOOP("KueDecimalSeparator", "Dot (.)"))
///         ROW(Class, COMMA, 1, QT_TRANSLATE_NOOP("KueDecimalSeparator", "Comma (,)"))
///
///     class KELVANE_UTIL_EXPORT KueDecimalSeparator : public HbbAEnum
///     {
///         HBB_ENUM(KueDecimalSeparator, KUE_DECIMAL_SEPARATOR)
///     };
///
///     HBB_ENUM_DEFINE(KueDecimalSeparator, KUE_DECIMAL_SEPARATOR, DOT, "extern\\KueCsv")
///
/// This gives the constants KueDecimalSeparator::DOT…, `enum EValue { E_DOT = 0, … }`, a default
/// constructor that copies the default item, and the static look-ups documented at HBB_ENUM. Items
/// are constant-initialised: they may be used before main, in whatever order libraries load.
class KELVANE_BASIC_EXPORT HbbAEnum
{
public:
    int getValue() const { return m_item->value; }
    QString getKey() const { return QString::fromUtf8(m_item->key); }

protected:
    explicit constexpr HbbAEnum(const HbbEnumItem* item)
        : m_item(item)
    {
    }

    const HbbEnumItem* m_item; // borrowed from the class's table or registry, both live for ever
};

/// Comparisons by value, within one enumeration class only.
template <class Enum>
using HbbIfEnum = std::enable_if_t<std::is_base_of_v<HbbAEnum, Enum>, bool>;

template <class Enum, HbbIfEnum<Enum> = true>
bool operator==(const Enum& a, const Enum& b)
{
    return a.getValue() == b.getValue();
}
template <class Enum, HbbIfEnum<Enum> = true>
bool operator!=(const Enum& a, const Enum& b)
{
    return a.getValue() != b.getValue();
}
template <class Enum, HbbIfEnum<Enum> = true>
bool operator<(const Enum& a, const Enum& b)
{
    return a.getValue() < b.getValue();
}
template <class Enum, HbbIfEnum<Enum> = true>
bool operator<=(const Enum& a, const Enum& b)
{
    return a.getValue() <= b.getValue();
}
template <class Enum, HbbIfEnum<Enum> = true>
bool operator>(const Enum& a, const Enum& b)
{
    return a.getValue() > b.getValue();
}
template <class Enum, HbbIfEnum<Enum> = true>
bool operator>=(const Enum& a, const Enum& b)
{
    return a.getValue() >= b.getValue();
}

/// Iterates over the items of an enumeration in value order, Java style or in a range-for.
template <class Enum>
class HbbEnumIterator
{
public:
    explicit HbbEnumIterator(QVector<const HbbEnumItem*> items)
        : m_items(std::move(items))
    {
    }
    bool hasNext() const { return m_next < m_items.size(); }
    Enum next() { return Enum(m_items.at(m_next++)); }

    class Position
    {
    public:
        explicit Position(const HbbEnumItem* const* at)
            : m_at(at)
        {
        }
        Enum operator*() const { return Enum(*m_at); }
        Position& operator++()
        {
            ++m_at;
            return *this;
        }
        bool operator!=(const Position& other) const { return m_at != other.m_at; }

    private:
        const HbbEnumItem* const* m_at;
    };
    Position begin() const { return Position(m_items.constBegin()); }
    Position end() const { return Position(m_items.constEnd()); }

private:
    QVector<const HbbEnumItem*> m_items;
    int m_next = 0;
};

/// Declares the items and the operations of an enumeration class:
/// - `getLabel()`: the label in the user's language; `toEnum()`: the value as `EValue`;
/// - `count()`, `createIterator()`: all items, in value order;
/// - `existsKey`, `existsLabel`, `existsValue`: membership;
/// - `fromKey`, `fromLabel`, `fromValue`: the item. With one argument an unknown item is a
///   programming error ("… is not valid"), with two the second is returned.
/// - `registerItem(value, key, label)`: adds an item at run time (a plug-in's). A value that is
///   taken already prints a debug message, and the later item wins. The texts are copied, so an
///   item outlives the library that registered it.
#define HBB_ENUM(Class, ROWS)                                                                      \
public:                                                                                            \
    enum EValue { ROWS(HBB_ENUM_VALUE, Class) };                                                   \
    ROWS(HBB_ENUM_CONSTANT, Class)                                                                 \
    static const Class _default;                                                                   \
    Class()                                                                                        \
        : Class(_default)                                                                          \
    {                                                                                              \
    }                                                                                              \
    QString getLabel() const                                                                       \
    {                                                                                              \
        return _map().getLabel(*m_item);                                                           \
    }                                                                                              \
    EValue toEnum() const                                                                          \
    {                                                                                              \
        return static_cast<EValue>(m_item->value);                                                 \
    }                                                                                              \
    static int count()                                                                             \
    {                                                                                              \
        return _map().getCount();                                                                  \
    }                                                                                              \
    static HbbEnumIterator<Class> createIterator()                                                 \
    {                                                                                              \
        return HbbEnumIterator<Class>(_map().getItems());                                          \
    }                                                                                              \
    static bool existsKey(const QString& key)                                                      \
    {                                                                                              \
        return _map().findKey(key) != nullptr;                                                     \
    }                                                                                              \
    static bool existsLabel(const QString& label)                                                  \
    {                                                                                              \
        return _map().findLabel(label) != nullptr;                                                 \
    }                                                                                              \
    static bool existsValue(int value)                                                             \
    {                                                                                              \
        return _map().findValue(value) != nullptr;                                                 \
    }                                                                                              \
    static Class fromKey(const QString& key)                                                       \
    {                                                                                              \
        return Class(_map().getFromKey(key));                                                      \
    }                                                                                              \
    static Class fromLabel(const QString& label)                                                   \
    {                                                                                              \
        return Class(_map().getFromLabel(label));                                                  \
    }                                                                                              \
    static Class fromValue(int value)                                                              \
    {                                                                                              \
        return Class(_map().getFromValue(value));                                                  \
    }                                                                                              \
    static Class fromKey(const QString& key, const Class& fallback)                                \
    {                                                                                              \
        const HbbEnumItem* item = _map().findKey(key);                                             \
        return item ? Class(item) : fallback;                                                      \
    }                                                                                              \
    static Class fromLabel(const QString& label, const Class& fallback)                            \
    {                                                                                              \
        const HbbEnumItem* item = _map().findLabel(label);                                         \
        return item ? Class(item) : fallback;                                                      \
    }                                                                                              \
    static Class fromValue(int value, const Class& fallback)                                       \
    {                                                                                              \
        const HbbEnumItem* item = _map().findValue(value);                                         \
        return item ? Class(item) : fallback;                                                      \
    }                                                                                              \
    static void registerItem(int value, const QString& key, const QString& label)                  \
    {                                                                                              \
        _map().registerItem(value, key, label);                                                    \
    }                                                                                              \
                                                                                                   \
private:                                                                                           \
    friend class HbbEnumIterator<Class>;                                                           \
    enum HbbRank { ROWS(HBB_ENUM_RANK, Class) };                                                   \
    static const HbbEnumItem _items[];                                                             \
    static HbbEnumRegistry& _map();                                                                \
    explicit constexpr Class(const HbbEnumItem* item)                                              \
        : HbbAEnum(item)                                                                           \
    {                                                                                              \
    }

/// Defines what HBB_ENUM declares, in the source file. `Class` is qualified when it is nested, and
/// stands so in messages; `sourcePath` is the path that failed look-ups name.
#define HBB_ENUM_DEFINE(Class, ROWS, DEFAULT, sourcePath)                                          \
    const HbbEnumItem Class::_items[] = {ROWS(HBB_ENUM_ITEM, Class)};                              \
    ROWS(HBB_ENUM_CONSTANT_DEFINITION, Class)                                                      \
    const Class Class::_default(&Class::_items[Class::HBB_RANK_##DEFAULT]);                        \
    HbbEnumRegistry& Class::_map()                                                                 \
    {                                                                                              \
        static HbbEnumRegistry registry(#Class, sourcePath, _items,                                \
                                        static_cast<int>(sizeof(_items) / sizeof(_items[0])));     \
        return registry;                                                                           \
    }

// What one row of the table becomes, place by place.
#define HBB_ENUM_VALUE(Class, name, value, label) E_##name = value,
#define HBB_ENUM_RANK(Class, name, value, label) HBB_RANK_##name,
#define HBB_ENUM_CONSTANT(Class, name, value, label) static const Class name;
#define HBB_ENUM_ITEM(Class, name, value, label) {value, #name, label},
#define HBB_ENUM_CONSTANT_DEFINITION(Class, name, value, label)                                    \
    const Class Class::name(&Class::_items[Class::HBB_RANK_##name]);
