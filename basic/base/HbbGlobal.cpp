#include <basic/base/HbbGlobal.h>

#include <QtCore/QLocale>

namespace
{
// QString's own conversions already keep to the C locale.
template <class Number, class Convert>
Number converted(const QString& text, Number defaultValue, Convert convert)
{
    bool ok = false;
    const Number value = convert(text.trimmed(), &ok);
    return ok ? value : defaultValue;
}
} // namespace

double HbbGlobal::convertString(const QString& text, double defaultValue)
{
    return converted(text, defaultValue, [](const QString& t, bool* ok) { return t.toDouble(ok); });
}

qint32 HbbGlobal::convertString(const QString& text, qint32 defaultValue)
{
    return converted(text, defaultValue, [](const QString& t, bool* ok) { return t.toInt(ok); });
}

qint16 HbbGlobal::convertString(const QString& text, qint16 defaultValue)
{
    return converted(text, defaultValue, [](const QString& t, bool* ok) { return t.toShort(ok); });
}

qint64 HbbGlobal::convertString(const QString& text, qint64 defaultValue)
{
    return converted(text, defaultValue,
                     [](const QString& t, bool* ok) -> qint64 { return t.toLongLong(ok); });
}

quint64 HbbGlobal::convertString(const QString& text, quint64 defaultValue)
{
    return converted(text, defaultValue,
                     [](const QString& t, bool* ok) -> quint64 { return t.toULongLong(ok); });
}
