#pragma once

#include <util/KuExport.h>

#include <basic/base/HbbAEnum.h>

#include <QtCore/QList>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <type_traits>

class QColor;

/// How a C++ type stands in a memento's field: `encode` gives the variant, `decode` takes it back.
///
/// In memory a field keeps its type; from a file every scalar comes back as text. So `decode`
/// accepts both, and it is strict: "3.7" is no integer, "abc" is no boolean, an integer out of
/// range is none. On a refusal it answers false and leaves `value` alone. All texts are C locale.
template <class T, class Enable = void>
struct KuuMementoCodec;

#define KUU_MEMENTO_CODEC(Type)                                                                    \
    template <>                                                                                    \
    struct KELVANE_UTIL_EXPORT KuuMementoCodec<Type> {                                             \
        static QVariant encode(const Type& value);                                                 \
        static bool decode(const QVariant& variant, Type& value);                                  \
    };

/// Texts "true", "yes", "false" and "no", in any case.
KUU_MEMENTO_CODEC(bool)
/// Decimal; white space around the digits is allowed.
KUU_MEMENTO_CODEC(int)
KUU_MEMENTO_CODEC(qint64)
KUU_MEMENTO_CODEC(quint64)
/// The text form is the shortest that reads back exactly.
KUU_MEMENTO_CODEC(double)
KUU_MEMENTO_CODEC(QString)
/// A list of texts; from a file, an empty text is the empty list.
KUU_MEMENTO_CODEC(QStringList)
/// Red, green, blue and alpha, 0 to 255; or a text "#rrggbb", "#aarrggbb" or a colour's name.
KUU_MEMENTO_CODEC(QColor)
/// Nested fields, as they stand.
KUU_MEMENTO_CODEC(QVariantMap)
KUU_MEMENTO_CODEC(QVariantList)

#undef KUU_MEMENTO_CODEC

/// Rich enumerations: the item's key; a key that the class does not know is refused.
template <class Enum>
struct KuuMementoCodec<Enum, std::enable_if_t<std::is_base_of_v<HbbAEnum, Enum>>> {
    static QVariant encode(const Enum& value) { return value.getKey(); }
    static bool decode(const QVariant& variant, Enum& value)
    {
        const QString key = variant.toString();
        if (!Enum::existsKey(key)) {
            return false;
        }
        value = Enum::fromKey(key);
        return true;
    }
};

/// Sequences of any type with a codec; refused as a whole when one item is refused.
template <class Sequence, class T>
struct KuuMementoSequenceCodec {
    static QVariant encode(const Sequence& values)
    {
        QVariantList list;
        list.reserve(static_cast<int>(values.size()));
        for (const T& value : values) {
            list.append(KuuMementoCodec<T>::encode(value));
        }
        return list;
    }
    static bool decode(const QVariant& variant, Sequence& values)
    {
        if (!variant.canConvert<QVariantList>()) {
            return false;
        }
        const QVariantList list = variant.toList();
        Sequence result;
        result.reserve(list.size());
        for (const QVariant& item : list) {
            T value{};
            if (!KuuMementoCodec<T>::decode(item, value)) {
                return false;
            }
            result.push_back(value);
        }
        values = std::move(result);
        return true;
    }
};
template <class T>
struct KuuMementoCodec<QVector<T>> : KuuMementoSequenceCodec<QVector<T>, T> {
};
template <class T>
struct KuuMementoCodec<QList<T>, std::enable_if_t<!std::is_same_v<T, QVariant>>>
    : KuuMementoSequenceCodec<QList<T>, T> {
};
