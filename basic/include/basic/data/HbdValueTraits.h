#pragma once

#include <basic/base/HbbExport.h>
#include <basic/base/HbbGlobal.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <cstring>
#include <vector>

/// What the kinds of columns know of one value: its C++ type, the undefined one, and the conversion
/// from and to a variant.
namespace HbdValueTraits
{
/// Equal by value.
template <class T>
struct Comparable {
    using Value = T;
    static bool areEqual(const std::vector<T>& a, const std::vector<T>& b) { return a == b; }
};

/// Equal bit for bit: 0.0 and -0.0 differ.
template <class T>
struct BitComparable {
    using Value = T;
    static bool areEqual(const std::vector<T>& a, const std::vector<T>& b)
    {
        return a.size() == b.size() &&
               (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
    }
};

/// Holds what converts to a real; NaN is undefined.
struct KELVANE_BASIC_EXPORT Real : BitComparable<double> {
    static double undefined() { return HbbGlobal::D_FFFF; }
    static bool isUndefined(double value) { return HbbGlobal::isUndefined(value); }
    static double fromVariant(const QVariant& value);
    static QVariant toVariant(double value);
};

/// Holds what converts to a real, rounded to 32 bits; NaN, and what is too large, is undefined. The
/// undefined value is NaN, which reads as D_FFFF.
struct KELVANE_BASIC_EXPORT Real32 : BitComparable<float> {
    static float undefined() { return std::numeric_limits<float>::quiet_NaN(); }
    static bool isUndefined(float value) { return value != value; }
    static float fromNumber(double number);
    static float fromVariant(const QVariant& value);
    static QVariant toVariant(float value);
};

/// Holds integers of 64 bits, and reals and texts that are whole numbers.
struct KELVANE_BASIC_EXPORT Integer : Comparable<qint64> {
    static qint64 undefined() { return HbbGlobal::I_FFFF; }
    static bool isUndefined(qint64 value) { return HbbGlobal::isUndefined(value); }
    static qint64 fromNumber(double number);
    static qint64 fromVariant(const QVariant& value);
    static QVariant toVariant(qint64 value);
};

/// Holds any text; the null text is undefined, the empty one is a value.
struct KELVANE_BASIC_EXPORT Text {
    using Value = QString;
    static QString undefined() { return QString(); }
    static bool isUndefined(const QString& value) { return value.isNull(); }
    static QString fromVariant(const QVariant& value);
    static QVariant toVariant(const QString& value);
    static bool areEqual(const std::vector<QString>& a, const std::vector<QString>& b);
};

/// Holds colours and their names, as 0xAARRGGBB with full alpha; 0 is undefined.
struct KELVANE_BASIC_EXPORT Color : Comparable<quint32> {
    static quint32 undefined() { return 0; }
    static bool isUndefined(quint32 value) { return value == 0; }
    static quint32 fromVariant(const QVariant& value);
    static QVariant toVariant(quint32 value);
};

/// Holds opacities from 0 to 255; an undefined one is opaque, 255.
struct KELVANE_BASIC_EXPORT AlphaChannel : Comparable<quint8> {
    static quint8 undefined() { return 255; }
    static bool isUndefined(quint8) { return false; }
    static quint8 fromVariant(const QVariant& value);
    static QVariant toVariant(quint8 value);
};

/// Holds selected (1) or not (0); what is undefined is not selected.
struct KELVANE_BASIC_EXPORT Selection : Comparable<quint8> {
    static quint8 undefined() { return 0; }
    static bool isUndefined(quint8) { return false; }
    static quint8 fromVariant(const QVariant& value);
    static QVariant toVariant(quint8 value);
};

/// Holds moments, as milliseconds since 1970-01-01T00:00:00 UTC; texts are read in ISO 8601, where
/// one without a zone is UTC.
struct KELVANE_BASIC_EXPORT Date : Comparable<qint64> {
    static qint64 undefined() { return HbbGlobal::I_FFFF; }
    static bool isUndefined(qint64 value) { return HbbGlobal::isUndefined(value); }
    static qint64 fromVariant(const QVariant& value);
    static QVariant toVariant(qint64 value);
};

/// Codes of a catalogue; 0xFFFF is undefined. The column converts labels.
struct KELVANE_BASIC_EXPORT Code : Comparable<quint16> {
    static quint16 undefined() { return 0xFFFF; }
    static bool isUndefined(quint16 value) { return value == 0xFFFF; }
    static quint16 fromVariant(const QVariant& value);
    static QVariant toVariant(quint16 value);
};
} // namespace HbdValueTraits
