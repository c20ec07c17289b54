#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

/// The fields of a tar header as bytes: where they stand, and numbers in them. Stateless.
namespace KusTarField
{
/// A place in the 512 bytes.
struct Field {
    int offset;
    int size;
};

inline constexpr Field NAME{0, 100};
inline constexpr Field MODE{100, 8};
inline constexpr Field OWNER_ID{108, 8};
inline constexpr Field GROUP_ID{116, 8};
inline constexpr Field SIZE{124, 12};
inline constexpr Field TIME{136, 12};
inline constexpr Field CHECKSUM{148, 8};
inline constexpr Field TYPE_FLAG{156, 1};
inline constexpr Field MAGIC{257, 6};
inline constexpr Field VERSION{263, 2};
inline constexpr Field OWNER_NAME{265, 32};
inline constexpr Field GROUP_NAME{297, 32};
inline constexpr Field PREFIX{345, 155};

/// Writes the bytes, cut to the field.
void write(char* header, Field field, const QByteArray& bytes);
/// The bytes before the first NUL.
QByteArray read(const char* header, Field field);

/// In octal, padded with "0" to all but the last byte of the field, which stays NUL.
void writeOctal(char* header, Field field, qint64 number);
/// In octal or, where that does not fit, as 0x80, NUL bytes and 64 bits with the highest first.
void writeSize(char* header, qint64 size);

/// A number in octal, blanks before it, or in two's complement with the highest bit of the field
/// set as a mark. False when it is neither, or does not fit.
bool readNumber(const char* header, Field field, qint64& number);

/// The sum of the header's bytes with blanks in the place of the checksum; the signed one is that
/// of writers whose `char` had a sign.
int getSum(const char* header);
int getSignedSum(const char* header);
} // namespace KusTarField
