#include "KudColumnBytes.h"

#include <util/utils/KuuMementoBytes.h>

#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QtEndian>

#include <memory>

namespace
{
QString tr(const char* text)
{
    return QCoreApplication::translate("KudColumnBytes", text);
}

[[noreturn]] void raiseWrongSize(quint64 found, quint64 expected)
{
    throw HbeUserError(tr("Its values take %1 bytes instead of %2.").arg(found).arg(expected));
}

template <class Variable>
QByteArray encodeNumbers(const HbdAVariable& variable)
{
    const auto values = static_cast<const Variable&>(variable).getValues();
    return KuuMementoBytes::pack(values.data(), static_cast<std::size_t>(values.size()) *
                                                    sizeof(typename Variable::Value));
}

template <class Variable>
void decodeNumbers(const QByteArray& text, int count, HbdAVariable& variable)
{
    using Value = typename Variable::Value;
    const KuuMementoBytes bytes(text);
    const quint64 expected = static_cast<quint64>(count) * sizeof(Value);
    if (bytes.getSize() != expected)
        raiseWrongSize(bytes.getSize(), expected); // before any memory is taken for it
    std::vector<Value> values(static_cast<std::size_t>(count));
    bytes.unpack(values.data());
    static_cast<Variable&>(variable).setValues(std::move(values));
}

QByteArray encodeTexts(const HbdAVariable& variable)
{
    const auto texts = static_cast<const HbdVariableText&>(variable).getValues();
    std::vector<char> bytes(static_cast<std::size_t>(texts.size()) * sizeof(qint32));
    auto* lengths = bytes.data();
    for (const QString& text : texts) {
        qToLittleEndian<qint32>(text.isNull() ? -1 : text.size(), lengths);
        lengths += sizeof(qint32);
    }
    for (const QString& text : texts) {
        const auto* units = reinterpret_cast<const char*>(text.constData());
        bytes.insert(bytes.end(), units, units + 2 * text.size());
    }
    return KuuMementoBytes::pack(bytes.data(), bytes.size());
}

void decodeTexts(const QByteArray& text, int count, HbdAVariable& variable)
{
    const KuuMementoBytes packed(text);
    const quint64 lengthBytes = static_cast<quint64>(count) * sizeof(qint32);
    const quint64 size = packed.getSize();
    if (size < lengthBytes)
        raiseWrongSize(size, lengthBytes);
    std::vector<char> bytes(size);
    packed.unpack(bytes.data());

    std::vector<QString> texts(static_cast<std::size_t>(count));
    quint64 at = lengthBytes;
    for (int rank = 0; rank < count; ++rank) {
        const auto length = qFromLittleEndian<qint32>(bytes.data() + std::size_t(rank) * 4);
        if (length < 0)
            continue;
        const quint64 unitBytes = 2 * static_cast<quint64>(length);
        if (unitBytes > size - at)
            raiseWrongSize(size, at + unitBytes);
        // An empty text is not a null one.
        QString value(length, Qt::Uninitialized);
        if (length > 0)
            std::memcpy(value.data(), bytes.data() + at, unitBytes);
        texts[static_cast<std::size_t>(rank)] = length == 0 ? QLatin1String("") : value;
        at += unitBytes;
    }
    if (at != size)
        raiseWrongSize(size, at);
    static_cast<HbdVariableText&>(variable).setValues(std::move(texts));
}

struct Codec {
    QByteArray (*encode)(const HbdAVariable&);
    void (*decode)(const QByteArray&, int, HbdAVariable&);
};

template <class Variable>
constexpr Codec numbers()
{
    return {&encodeNumbers<Variable>, &decodeNumbers<Variable>};
}

Codec codecOf(const HbdAVariable& variable)
{
    switch (variable.getType().toEnum()) {
    case HbdEVarType::E_REAL:
        return numbers<HbdVariableReal>();
    case HbdEVarType::E_REAL_32:
        return numbers<HbdVariableReal32>();
    case HbdEVarType::E_INTEGER:
        return numbers<HbdVariableInteger>();
    case HbdEVarType::E_CATEGORY:
        return numbers<HbdVariableEnum>();
    case HbdEVarType::E_COLOR:
        return numbers<HbdVariableColor>();
    case HbdEVarType::E_ALPHA_CHANNEL:
        return numbers<HbdVariableAlpha>();
    case HbdEVarType::E_SELECTION:
        return numbers<HbdVariableSelection>();
    case HbdEVarType::E_DATE:
        return numbers<HbdVariableDate>();
    case HbdEVarType::E_TEXT:
        break;
    }
    return {&encodeTexts, &decodeTexts};
}
} // namespace

QByteArray KudColumnBytes::encode(const HbdAVariable& variable)
{
    return codecOf(variable).encode(variable);
}

void KudColumnBytes::decode(const QByteArray& text, int count, HbdAVariable& variable)
{
    codecOf(variable).decode(text, count, variable);
}
