#include <util/utils/KuuMementoCodec.h>
#include <util/utils/KuuMementoFields.h>

#include <basic/base/HbbDebug.h>

#include <QtCore/QCoreApplication>
#include <QtGui/QColor>

#include <limits>

namespace
{
int typeOf(const QVariant& variant)
{
    return variant.userType();
}

bool isText(const QVariant& variant)
{
    return typeOf(variant) == QMetaType::QString || typeOf(variant) == QMetaType::QByteArray;
}

bool isSigned(const QVariant& variant)
{
    switch (typeOf(variant)) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::Short:
    case QMetaType::SChar:
        return true;
    default:
        return false;
    }
}

bool isUnsigned(const QVariant& variant)
{
    switch (typeOf(variant)) {
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::ULong:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

bool isReal(const QVariant& variant)
{
    return typeOf(variant) == QMetaType::Double || typeOf(variant) == QMetaType::Float;
}

// Exact, or refused. Reals are accepted when they are whole and in range.
bool toInteger(const QVariant& variant, qint64& value)
{
    bool ok = false;
    qint64 result = 0;
    if (isText(variant)) {
        result = variant.toString().toLongLong(&ok);
    } else if (isSigned(variant)) {
        result = variant.toLongLong(&ok);
    } else if (isUnsigned(variant)) {
        const quint64 magnitude = variant.toULongLong(&ok);
        ok = ok && magnitude <= quint64(std::numeric_limits<qint64>::max());
        result = qint64(magnitude);
    } else if (isReal(variant)) {
        const double real = variant.toDouble();
        ok = real >= -9.0e18 && real <= 9.0e18 && real == double(qint64(real));
        result = ok ? qint64(real) : 0;
    }
    if (ok) {
        value = result;
    }
    return ok;
}
} // namespace

QVariant KuuMementoCodec<bool>::encode(const bool& value)
{
    return value;
}

bool KuuMementoCodec<bool>::decode(const QVariant& variant, bool& value)
{
    if (typeOf(variant) == QMetaType::Bool) {
        value = variant.toBool();
        return true;
    }
    if (!isText(variant)) {
        return false;
    }
    const QString text = variant.toString();
    const auto is = [&](const char* word) {
        return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    };
    const bool yes = is("true") || is("yes");
    if (!yes && !is("false") && !is("no")) {
        return false;
    }
    value = yes;
    return true;
}

QVariant KuuMementoCodec<int>::encode(const int& value)
{
    return value;
}

bool KuuMementoCodec<int>::decode(const QVariant& variant, int& value)
{
    qint64 wide = 0;
    if (!toInteger(variant, wide) || wide < std::numeric_limits<int>::min() ||
        wide > std::numeric_limits<int>::max()) {
        return false;
    }
    value = int(wide);
    return true;
}

QVariant KuuMementoCodec<qint64>::encode(const qint64& value)
{
    return value;
}

bool KuuMementoCodec<qint64>::decode(const QVariant& variant, qint64& value)
{
    return toInteger(variant, value);
}

QVariant KuuMementoCodec<quint64>::encode(const quint64& value)
{
    return value;
}

bool KuuMementoCodec<quint64>::decode(const QVariant& variant, quint64& value)
{
    bool ok = false;
    if (isText(variant)) {
        const quint64 result = variant.toString().toULongLong(&ok);
        if (ok) {
            value = result;
        }
        return ok;
    }
    if (isUnsigned(variant)) {
        value = variant.toULongLong();
        return true;
    }
    qint64 wide = 0;
    if (!toInteger(variant, wide) || wide < 0) {
        return false;
    }
    value = quint64(wide);
    return true;
}

QVariant KuuMementoCodec<double>::encode(const double& value)
{
    return value;
}

bool KuuMementoCodec<double>::decode(const QVariant& variant, double& value)
{
    if (!isText(variant) && !isReal(variant) && !isSigned(variant) && !isUnsigned(variant)) {
        return false;
    }
    // QString::toDouble is C locale; QVariant's own conversion of texts is the same.
    bool ok = false;
    const double result = variant.toDouble(&ok);
    if (ok) {
        value = result;
    }
    return ok;
}

QVariant KuuMementoCodec<QString>::encode(const QString& value)
{
    return value;
}

bool KuuMementoCodec<QString>::decode(const QVariant& variant, QString& value)
{
    switch (typeOf(variant)) {
    case QMetaType::QVariantList:
    case QMetaType::QVariantMap:
    case QMetaType::QStringList:
        return false;
    default:
        break;
    }
    if (variant.isValid() && !variant.canConvert<QString>()) {
        return false;
    }
    value = variant.toString();
    return true;
}

QVariant KuuMementoCodec<QStringList>::encode(const QStringList& value)
{
    return value;
}

bool KuuMementoCodec<QStringList>::decode(const QVariant& variant, QStringList& value)
{
    if (isText(variant) && variant.toString().isEmpty()) {
        value.clear();
        return true;
    }
    if (typeOf(variant) == QMetaType::QStringList) {
        value = variant.toStringList();
        return true;
    }
    if (typeOf(variant) != QMetaType::QVariantList) {
        return false;
    }
    QStringList result;
    const QVariantList items = variant.toList();
    for (const QVariant& item : items) {
        QString text;
        if (!KuuMementoCodec<QString>::decode(item, text)) {
            return false;
        }
        result.append(text);
    }
    value = result;
    return true;
}

QVariant KuuMementoCodec<QColor>::encode(const QColor& value)
{
    return value;
}

bool KuuMementoCodec<QColor>::decode(const QVariant& variant, QColor& value)
{
    const bool isColor = typeOf(variant) == QMetaType::QColor;
    if (!isColor && !isText(variant)) {
        return false;
    }
    const QColor color = isColor ? variant.value<QColor>() : QColor(variant.toString());
    if (!isColor && !color.isValid()) {
        return false;
    }
    value = color;
    return true;
}

QVariant KuuMementoCodec<QVariantMap>::encode(const QVariantMap& value)
{
    return value;
}

bool KuuMementoCodec<QVariantMap>::decode(const QVariant& variant, QVariantMap& value)
{
    if (typeOf(variant) != QMetaType::QVariantMap) {
        return false;
    }
    value = variant.toMap();
    return true;
}

QVariant KuuMementoCodec<QVariantList>::encode(const QVariantList& value)
{
    return value;
}

bool KuuMementoCodec<QVariantList>::decode(const QVariant& variant, QVariantList& value)
{
    if (typeOf(variant) != QMetaType::QVariantList && typeOf(variant) != QMetaType::QStringList) {
        return false;
    }
    value = variant.toList();
    return true;
}

void kuuWarnInvalidField(const QString& owner, const QString& key, const QVariant& value)
{
    HbbDebug::printWarning(
        QCoreApplication::translate("KuuMementoFields",
                                    "Field '%1' of '%2' has the invalid value '%3' and is ignored.")
            .arg(key, owner, value.toString().left(100)));
}
