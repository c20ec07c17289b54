#include <util/system/KusSerializer.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDataStream>
#include <QtCore/QLocale>
#include <QtCore/QMetaType>

#include <algorithm>
#include <cmath>

namespace
{
constexpr const char* SOURCE_PATH = "system/KusSerializer";
constexpr QDataStream::Version STREAM_VERSION = QDataStream::Qt_5_15;

const QLatin1String PREFIX_TEXT("@text:");
const QLatin1String PREFIX_UINT("@uint:");
const QLatin1String PREFIX_INT64("@int64:");
const QLatin1String PREFIX_UINT64("@uint64:");
const QLatin1String PREFIX_FLOAT("@float:");
const QLatin1String PREFIX_VARIANT("@variant:");
const QLatin1String INVALID("@invalid");

QString realText(double value)
{
    if (value == 0.0) {
        return std::signbit(value) ? QStringLiteral("-0.0") : QStringLiteral("0.0");
    }
    const QString text = QString::number(value, 'g', QLocale::FloatingPointShortest);
    const bool whole = std::isfinite(value) && !text.contains(QLatin1Char('.')) &&
                       !text.contains(QLatin1Char('e'));
    return whole ? text + QLatin1String(".0") : text;
}

// True when XML 1.0 carries the text unchanged.
bool isXmlText(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        const ushort c = text.at(i).unicode();
        const bool pair =
            QChar::isHighSurrogate(c) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (pair) {
            ++i;
        } else if ((c < 0x20 && c != '\t' && c != '\n' && c != '\r') || QChar::isSurrogate(c) ||
                   c >= 0xFFFE) {
            return false;
        }
    }
    return true;
}

// What a text without a prefix means, if not itself: only the exact forms that `serialize` writes,
// so that "007" and "1e5" stay texts.
QVariant plainValue(const QString& text)
{
    if (text == QLatin1String("true") || text == QLatin1String("false")) {
        return text == QLatin1String("true");
    }
    if (text.size() > 32 || text.isEmpty()) {
        return QVariant();
    }
    bool ok = false;
    const int integer = text.toInt(&ok);
    if (ok && QString::number(integer) == text) {
        return integer;
    }
    const double real = text.toDouble(&ok);
    if (ok && realText(real) == text) {
        return real;
    }
    return QVariant();
}

QString serializeText(const QString& text)
{
    const bool plain = !text.startsWith(QLatin1Char('@')) && !plainValue(text).isValid() &&
                       (text.isEmpty() || !text.trimmed().isEmpty());
    return plain ? text : PREFIX_TEXT + text;
}

// QVariant::save does not report a value that it cannot write, so the containers are walked first.
void checkStreamable(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::QVariantList: {
        const QVariantList items = value.toList();
        std::for_each(items.begin(), items.end(), checkStreamable);
        return;
    }
    case QMetaType::QVariantMap: {
        const QVariantMap items = value.toMap();
        std::for_each(items.begin(), items.end(), checkStreamable);
        return;
    }
    case QMetaType::QVariantHash: {
        const QVariantHash items = value.toHash();
        std::for_each(items.begin(), items.end(), checkStreamable);
        return;
    }
    default:
        break;
    }
    if (value.userType() < QMetaType::User) {
        return;
    }
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(STREAM_VERSION);
    if (!QMetaType::save(stream, value.userType(), value.constData())) {
        HBE_PROGRAMMING_ERROR(
            SOURCE_PATH, QCoreApplication::translate("KusSerializer",
                                                     "A value of type '%1' cannot be serialized.")
                             .arg(QString::fromLatin1(value.typeName())));
    }
}

QString serializeStream(const QVariant& value)
{
    checkStreamable(value);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(STREAM_VERSION);
    stream << value;
    return PREFIX_VARIANT + QString::fromLatin1(bytes.toBase64());
}

QVariant unserializeStream(const QStringRef& text)
{
    const QByteArray bytes = QByteArray::fromBase64(text.toLatin1());
    QDataStream stream(bytes);
    stream.setVersion(STREAM_VERSION);
    QVariant value;
    stream >> value;
    return stream.status() == QDataStream::Ok && stream.atEnd() ? value : QVariant();
}
} // namespace

QString KusSerializer::serialize(const QVariant& value)
{
    if (!value.isValid()) {
        return INVALID;
    }
    const bool isText = value.userType() == QMetaType::QString;
    if (isText ? !isXmlText(value.toString()) : value.isNull()) {
        return serializeStream(value);
    }
    switch (value.userType()) {
    case QMetaType::QString:
        return serializeText(value.toString());
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Int:
        return QString::number(value.toInt());
    case QMetaType::Double:
        return realText(value.toDouble());
    case QMetaType::UInt:
        return PREFIX_UINT + QString::number(value.toUInt());
    case QMetaType::LongLong:
        return PREFIX_INT64 + QString::number(value.toLongLong());
    case QMetaType::ULongLong:
        return PREFIX_UINT64 + QString::number(value.toULongLong());
    case QMetaType::Float:
        return PREFIX_FLOAT + realText(double(value.toFloat()));
    default:
        return serializeStream(value);
    }
}

QVariant KusSerializer::unserialize(const QString& text)
{
    if (!text.startsWith(QLatin1Char('@'))) {
        const QVariant value = plainValue(text);
        return value.isValid() ? value : QVariant(text);
    }
    const auto rest = [&](const QLatin1String& prefix) { return text.midRef(prefix.size()); };
    bool ok = false;
    QVariant value;
    if (text.startsWith(PREFIX_TEXT)) {
        return rest(PREFIX_TEXT).toString();
    }
    if (text.startsWith(PREFIX_VARIANT)) {
        return unserializeStream(rest(PREFIX_VARIANT));
    }
    if (text.startsWith(PREFIX_UINT)) {
        value = rest(PREFIX_UINT).toUInt(&ok);
    } else if (text.startsWith(PREFIX_INT64)) {
        value = rest(PREFIX_INT64).toLongLong(&ok);
    } else if (text.startsWith(PREFIX_UINT64)) {
        value = rest(PREFIX_UINT64).toULongLong(&ok);
    } else if (text.startsWith(PREFIX_FLOAT)) {
        value = rest(PREFIX_FLOAT).toFloat(&ok);
    } else {
        // Not ours: "@" at the start of a text that somebody typed, except the invalid variant.
        return text == INVALID ? QVariant() : QVariant(text);
    }
    return ok ? value : QVariant();
}
