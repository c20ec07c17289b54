#include "KusTarField.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <cstring>

namespace
{
constexpr int HEADER_SIZE = 512;
constexpr qint64 OCTAL_SIZE_END = qint64(1) << 33; // 11 octal digits
constexpr char BINARY_MARK = '\x80';

template <class Byte>
int sumAs(const char* header)
{
    const auto checksum = KusTarField::CHECKSUM;
    int sum = 0;
    for (int i = 0; i < HEADER_SIZE; ++i) {
        const bool isChecksum = i >= checksum.offset && i < checksum.offset + checksum.size;
        sum += isChecksum ? ' ' : static_cast<Byte>(header[i]);
    }
    return sum;
}

bool readOctal(const char* begin, const char* end, qint64& number)
{
    const char* digit = std::find_if(begin, end, [](char c) { return c != ' '; });
    if (digit == end || *digit < '0' || *digit > '7')
        return false;
    number = 0; // a field has twelve digits at most
    for (; digit != end && *digit >= '0' && *digit <= '7'; ++digit)
        number = number * 8 + (*digit - '0');
    return digit == end || *digit == '\0' || *digit == ' ';
}

bool readBinary(const char* begin, const char* end, qint64& number)
{
    const auto first = static_cast<unsigned char>(*begin);
    const bool isNegative = (first & 0x40) != 0; // the bit behind the mark is the sign
    auto value = static_cast<quint64>(isNegative ? -1 : 0);
    value = (value << 6) | (first & 0x3f);
    for (const char* byte = begin + 1; byte != end; ++byte) {
        const quint64 lost = value >> 55; // the sign must be all that leaves at the top
        if (lost != (isNegative ? 0x1ffU : 0U))
            return false;
        value = (value << 8) | static_cast<unsigned char>(*byte);
    }
    number = static_cast<qint64>(value);
    return true;
}
} // namespace

void KusTarField::write(char* header, Field field, const QByteArray& bytes)
{
    std::memcpy(header + field.offset, bytes.constData(),
                static_cast<std::size_t>(std::min(bytes.size(), field.size)));
}

QByteArray KusTarField::read(const char* header, Field field)
{
    const char* const begin = header + field.offset;
    return QByteArray(begin, static_cast<int>(std::find(begin, begin + field.size, '\0') - begin));
}

void KusTarField::writeOctal(char* header, Field field, qint64 number)
{
    write(header, field, QByteArray::number(number, 8).rightJustified(field.size - 1, '0'));
}

void KusTarField::writeSize(char* header, qint64 size)
{
    if (size < OCTAL_SIZE_END) {
        writeOctal(header, SIZE, size);
        return;
    }
    header[SIZE.offset] = BINARY_MARK;
    qToBigEndian(size, header + SIZE.offset + 4);
}

bool KusTarField::readNumber(const char* header, Field field, qint64& number)
{
    const char* const begin = header + field.offset;
    const char* const end = begin + field.size;
    const bool isBinary = (static_cast<unsigned char>(*begin) & 0x80) != 0;
    return isBinary ? readBinary(begin, end, number) : readOctal(begin, end, number);
}

int KusTarField::getSum(const char* header)
{
    return sumAs<unsigned char>(header);
}

int KusTarField::getSignedSum(const char* header)
{
    return sumAs<signed char>(header);
}
