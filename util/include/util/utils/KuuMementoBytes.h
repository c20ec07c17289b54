#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>

#include <cstddef>

/// A block of numbers as one text of a memento: its little-endian bytes, compressed as one zstd
/// frame whose header states their number, in base64. No bytes are an empty text.
///
/// An object is such a text opened for reading: its size is known, and can be compared with what is
/// expected, before any memory is taken for the bytes. A value; any thread.
class KELVANE_UTIL_EXPORT KuuMementoBytes
{
public:
    /// HbeUserError where the result would be longer than a text can be.
    static QByteArray pack(const void* bytes, std::size_t size);

    /// HbeUserError, as below, says what is wrong with the text: no base64, no such frame, or one
    /// that states more bytes than a frame of its length can hold.
    explicit KuuMementoBytes(const QByteArray& text);

    quint64 getSize() const { return m_size; }
    /// Writes `getSize()` bytes. HbeUserError for a frame that is damaged.
    void unpack(void* bytes) const;

private:
    QByteArray m_frame;
    quint64 m_size;
};
