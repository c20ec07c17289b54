#pragma once

#include <util/utils/KuuMemento.h>
#include <util/utils/KuuMementoCodec.h>

#include <functional>
#include <vector>

/// The fields of a persistent class, listed once, in its source file; one row serves building and
/// restoring a memento:
///
///     const KuuMementoFields<KugStyleSize>& KugStyleSize::fields()
///     {
///         static const KuuMementoFields<KugStyleSize> rows = {
///             {"size", &KugStyleSize::m_size},
///             {"paletteID", &KugStyleSize::m_palette, "paletteName"}, // the key of old files
///             KuuMementoField<KugStyleSize>("factor", &KugStyleSize::m_factor)
///                 .when([](const KugStyleSize& s) { return s.m_enabled; }),
///         };
///         return rows;
///     }
///     void KugStyleSize::_buildMemento(KuuMemento& memento) const { fields().build(*this,
///     memento); }
///
/// A key that is absent leaves the member as it is. A value that does not decode does so, too, and
/// a warning names the relation and the key. The rows are immutable: any thread may use them.
template <class Object>
class KuuMementoField
{
public:
    using Condition = std::function<bool(const Object&)>;

    template <class T, class Owner>
    KuuMementoField(const char* key, T Owner::*member, const char* legacyKey = nullptr)
        : m_key(QLatin1String(key))
        , m_legacyKey(QLatin1String(legacyKey))
        , m_encode([member](const Object& o) { return KuuMementoCodec<T>::encode(o.*member); })
        , m_decode([member](Object& o, const QVariant& variant) {
            return KuuMementoCodec<T>::decode(variant, o.*member);
        })
    {
    }

    /// A field that is no plain member: what `get` answers, what `set` takes (false: refused).
    template <class T>
    static KuuMementoField computed(const char* key, std::function<T(const Object&)> get,
                                    std::function<bool(Object&, const T&)> set)
    {
        KuuMementoField field(key);
        field.m_encode = [get](const Object& o) { return KuuMementoCodec<T>::encode(get(o)); };
        field.m_decode = [set](Object& o, const QVariant& variant) {
            T value{};
            return KuuMementoCodec<T>::decode(variant, value) && set(o, value);
        };
        return field;
    }

    /// The row counts, when building and when restoring, only if the condition holds. Rows are
    /// handled in order, so a condition may look at members of the rows above.
    KuuMementoField& when(Condition condition)
    {
        m_condition = std::move(condition);
        return *this;
    }

    void build(const Object& object, QVariantMap& fields) const
    {
        if (!m_condition || m_condition(object)) {
            fields.insert(m_key, m_encode(object));
        }
    }

    /// Answers false when the value was there but did not decode.
    bool restore(Object& object, const QVariantMap& fields) const
    {
        if (m_condition && !m_condition(object)) {
            return true;
        }
        auto found = fields.constFind(m_key);
        if (found == fields.constEnd() && !m_legacyKey.isEmpty()) {
            found = fields.constFind(m_legacyKey);
        }
        return found == fields.constEnd() || m_decode(object, *found);
    }

    const QString& getKey() const { return m_key; }

private:
    explicit KuuMementoField(const char* key)
        : m_key(QLatin1String(key))
    {
    }

    QString m_key;
    QString m_legacyKey;
    std::function<QVariant(const Object&)> m_encode;
    std::function<bool(Object&, const QVariant&)> m_decode;
    Condition m_condition;
};

/// Warns that a field kept its value.
KELVANE_UTIL_EXPORT void kuuWarnInvalidField(const QString& owner, const QString& key,
                                             const QVariant& value);

template <class Object>
class KuuMementoFields
{
public:
    KuuMementoFields(std::initializer_list<KuuMementoField<Object>> rows)
        : m_rows(rows)
    {
    }

    void build(const Object& object, QVariantMap& fields) const
    {
        for (const auto& row : m_rows) {
            row.build(object, fields);
        }
    }
    void build(const Object& object, KuuMemento& memento) const
    {
        QVariantMap fields = memento.getFields();
        build(object, fields);
        memento.setFields(fields);
    }

    /// `owner` names the object in warnings.
    void restore(Object& object, const QVariantMap& fields, const QString& owner) const
    {
        const QStringList invalid = restoreQuietly(object, fields);
        for (const QString& key : invalid) {
            kuuWarnInvalidField(owner, key, fields.value(key));
        }
    }

    /// Answers the keys whose values did not decode, for those who have more to say than a warning.
    QStringList restoreQuietly(Object& object, const QVariantMap& fields) const
    {
        QStringList invalid;
        for (const auto& row : m_rows) {
            if (!row.restore(object, fields)) {
                invalid.append(row.getKey());
            }
        }
        return invalid;
    }
    void restore(Object& object, const KuuMemento& memento) const
    {
        restore(object, memento.getFields(), memento.getId().getRelation());
    }

private:
    std::vector<KuuMementoField<Object>> m_rows;
};
