#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QLatin1String>
#include <QtCore/QString>

#include <limits>

/// Undefined values, the not-available text, and conversions of texts to numbers.
class KELVANE_BASIC_EXPORT HbbGlobal
{
public:
    /// The undefined real. Finite, so that it survives every text form, and far outside any data.
    static constexpr double D_FFFF = 1.0e300;

    /// The undefined integer.
    static constexpr qint64 I_FFFF = std::numeric_limits<qint64>::min();

    /// Shown where a value is not available. (The length stands there because the constructor
    /// without it is a constant expression to GCC only.)
    static constexpr QLatin1String STR_NA{"N/A", 3};

    /// True for D_FFFF and for NaN; an infinity is a value.
    static constexpr bool isUndefined(double value) { return value == D_FFFF || value != value; }
    static constexpr bool isUndefined(qint64 value) { return value == I_FFFF; }

    /// Data from outside: NaN becomes D_FFFF, everything else stays.
    static constexpr double normalized(double value) { return isUndefined(value) ? D_FFFF : value; }

    /// The number that the whole text spells in the C locale (white space around it is allowed), or
    /// `defaultValue`. Out of range is no number.
    static double convertString(const QString& text, double defaultValue);
    static qint32 convertString(const QString& text, qint32 defaultValue);
    static qint16 convertString(const QString& text, qint16 defaultValue);
    static qint64 convertString(const QString& text, qint64 defaultValue);
    static quint64 convertString(const QString& text, quint64 defaultValue);
};
