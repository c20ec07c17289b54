#pragma once

#include <QtCore/QByteArray>

class HbdAVariable;

/// The values of a column as one text: their little-endian bytes, compressed as a zstd frame, in
/// base64. Texts are their lengths (32 bits each, -1 for an undefined text), then their UTF-16 code
/// units.
namespace KudColumnBytes
{
QByteArray encode(const HbdAVariable& variable);

/// Fills an empty column with `count` values. A user error says what is wrong with the text.
void decode(const QByteArray& text, int count, HbdAVariable& variable);
} // namespace KudColumnBytes
