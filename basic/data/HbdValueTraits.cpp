#include <basic/data/HbdValueTraits.h>

#include <QtCore/QDateTime>
#include <QtGui/QColor>

#include <cmath>

namespace
{
bool isText(const QVariant& value)
{
    return value.type() == QVariant::String || value.type() == QVariant::ByteArray;
}

double toReal(const QVariant& value)
{
    if (value.userType() == QMetaType::Double)
        return *static_cast<const double*>(value.constData());
    if (isText(value))
        return HbbGlobal::convertString(value.toString(), HbbGlobal::D_FFFF);
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok ? HbbGlobal::normalized(number) : HbbGlobal::D_FFFF;
}
} // namespace

namespace HbdValueTraits
{
double Real::fromVariant(const QVariant& value)
{
    return HbbGlobal::normalized(toReal(value));
}

QVariant Real::toVariant(double value)
{
    return isUndefined(value) ? QVariant() : QVariant(value);
}

float Real32::fromNumber(double number)
{
    const bool fits =
        !HbbGlobal::isUndefined(number) &&
        (std::isinf(number) || std::fabs(number) <= double(std::numeric_limits<float>::max()));
    return fits ? static_cast<float>(number) : undefined();
}

float Real32::fromVariant(const QVariant& value)
{
    return fromNumber(Real::fromVariant(value));
}

QVariant Real32::toVariant(float value)
{
    return isUndefined(value) ? QVariant() : QVariant(static_cast<double>(value));
}

qint64 Integer::fromNumber(double number)
{
    // Beyond these bounds the conversion to an integer would have no meaning.
    const bool whole = number == std::floor(number) && std::fabs(number) < 9.2e18;
    return whole ? static_cast<qint64>(number) : undefined();
}

qint64 Integer::fromVariant(const QVariant& value)
{
    if (isText(value))
        return HbbGlobal::convertString(value.toString(), undefined());
    if (value.type() == QVariant::Double || value.userType() == QMetaType::Float)
        return fromNumber(value.toDouble());
    bool ok = false;
    const qint64 number = value.toLongLong(&ok);
    return ok ? number : undefined();
}

QVariant Integer::toVariant(qint64 value)
{
    return isUndefined(value) ? QVariant() : QVariant(value);
}

QString Text::fromVariant(const QVariant& value)
{
    return value.isValid() ? value.toString() : QString();
}

QVariant Text::toVariant(const QString& value)
{
    return isUndefined(value) ? QVariant() : QVariant(value);
}

bool Text::areEqual(const std::vector<QString>& a, const std::vector<QString>& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const QString& x, const QString& y) { return x.isNull() == y.isNull() && x == y; });
}

quint32 Color::fromVariant(const QVariant& value)
{
    const QColor color = isText(value) ? QColor(value.toString()) : value.value<QColor>();
    return color.isValid() ? (color.rgb() | 0xFF000000U) : undefined();
}

QVariant Color::toVariant(quint32 value)
{
    return isUndefined(value) ? QVariant() : QVariant(QColor(QRgb(value)));
}

quint8 AlphaChannel::fromVariant(const QVariant& value)
{
    const qint64 number = Integer::fromVariant(value);
    return number >= 0 && number <= 255 ? static_cast<quint8>(number) : undefined();
}

QVariant AlphaChannel::toVariant(quint8 value)
{
    return QVariant(static_cast<int>(value));
}

quint8 Selection::fromVariant(const QVariant& value)
{
    if (value.type() == QVariant::Bool)
        return value.toBool() ? 1 : 0;
    return Integer::fromVariant(value) == 1 ? 1 : 0;
}

QVariant Selection::toVariant(quint8 value)
{
    return QVariant(static_cast<int>(value));
}

qint64 Date::fromVariant(const QVariant& value)
{
    QDateTime moment;
    if (isText(value)) {
        moment = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
        if (moment.timeSpec() == Qt::LocalTime)
            moment.setTimeSpec(Qt::UTC);
    } else if (value.type() == QVariant::Date) {
        moment = QDateTime(value.toDate(), QTime(0, 0), Qt::UTC);
    } else {
        moment = value.toDateTime();
    }
    return moment.isValid() ? moment.toMSecsSinceEpoch() : undefined();
}

QVariant Date::toVariant(qint64 value)
{
    return isUndefined(value) ? QVariant()
                              : QVariant(QDateTime::fromMSecsSinceEpoch(value, Qt::UTC));
}

quint16 Code::fromVariant(const QVariant& value)
{
    const qint64 number = Integer::fromVariant(value);
    return number >= 0 && number < undefined() ? static_cast<quint16>(number) : undefined();
}

QVariant Code::toVariant(quint16 value)
{
    return isUndefined(value) ? QVariant() : QVariant(static_cast<int>(value));
}
} // namespace HbdValueTraits
