#include "HbbDecimalWriter.h"
#include <basic/base/HbbStringFormat.h>

#include <charconv>
#include <cmath>
#include <cstring>

namespace
{
char* writeNonFinite(char* out, double value)
{
    const char* text = std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    return std::copy(text, text + std::strlen(text), out);
}
} // namespace

char* HbbStringFormat::write(char* out, double value, HbbEFormat::EValue format, int precision)
{
    if (!std::isfinite(value))
        return writeNonFinite(out, value);
    precision = getPrecision(precision);
    char* const end = out + getCapacity(precision);
    switch (format) {
    case HbbEFormat::E_SCIENTIFIC:
        return std::to_chars(out, end, value, std::chars_format::scientific, precision).ptr;
    case HbbEFormat::E_GENERAL:
        return std::to_chars(out, end, value, std::chars_format::general, precision).ptr;
    case HbbEFormat::E_SHORTEST:
        return std::to_chars(out, end, value).ptr;
    case HbbEFormat::E_INTEGER:
        precision = 0;
        break;
    case HbbEFormat::E_DECIMAL:
        break;
    }
    if (char* written = HbbDecimalWriter::write(out, value, precision))
        return written;
    return std::to_chars(out, end, value, std::chars_format::fixed, precision).ptr;
}

char* HbbStringFormat::write(char* out, qint64 value)
{
    quint64 magnitude = static_cast<quint64>(value);
    if (value < 0) {
        *out++ = '-';
        magnitude = 0 - magnitude;
    }
    return HbbDecimalWriter::writeInteger(out, magnitude);
}

QByteArray HbbStringFormat::simpleValueToByteArray(double value, const HbbEFormat& format,
                                                   int precision)
{
    char buffer[CAPACITY];
    const char* end = write(buffer, value, format.toEnum(), precision);
    return QByteArray(buffer, static_cast<int>(end - buffer));
}

QByteArray HbbStringFormat::simpleValueToByteArray(qint64 value)
{
    char buffer[20];
    const char* end = write(buffer, value);
    return QByteArray(buffer, static_cast<int>(end - buffer));
}
