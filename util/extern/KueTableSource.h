#pragma once

#include <util/extern/KueTableResult.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <memory>
#include <vector>

class QTextCodec;
class QTextDecoder;

/// The bytes of a file as a window that moves forward: UTF-8, or Latin-1, without a byte-order
/// mark. Behind the window stands a line feed, so that a search for the end of a line ends.
///
/// UTF-16 is converted as it is read. Whether the rest is UTF-8 is known at its end only: the
/// encoding changes to LATIN_1 with the first bytes that are not UTF-8, before they are handed out.
class KueTableSource
{
    Q_DECLARE_TR_FUNCTIONS(KueTableSource)

public:
    using Encoding = KueTableResult::Encoding;

    /// Opens a regular file and reads enough to recognise its layout; later blocks have
    /// `blockSize`. Raises HbeUserError.
    KueTableSource(const QString& path, int blockSize);
    ~KueTableSource();

    /// Starts again at the first byte.
    void rewind();

    const char* begin() const { return m_bytes.data(); }
    const char* end() const { return m_bytes.data() + m_end; }

    /// The window reaches the end of the file.
    bool isAtEnd() const { return m_isAtEnd; }

    /// Drops what stands before `position`, and reads one block more. Not at the end. `line` is the
    /// number of the line that holds `position`, for errors.
    void advance(const char* position, qint64 line);

    Encoding getEncoding() const { return m_encoding; }
    QString decode(const char* text, std::size_t size) const;

    qint64 getBytesRead() const { return m_bytesRead; }
    qint64 getBytesTotal() const { return m_bytesTotal; }
    const QString& getPath() const { return m_path; }

private:
    void start(std::size_t blockSize);
    void readBlock(std::size_t blockSize, qint64 line);
    qint64 readBytes(char* out, qint64 count);
    void detectMark();
    void refuseZeroBytes(std::size_t from, qint64 line) const;
    void validate();

    QString m_path;
    std::size_t m_blockSize;
    QFile m_file;
    std::unique_ptr<QTextDecoder> m_decoder; ///< for UTF-16 alone
    std::vector<char> m_bytes;
    std::size_t m_end = 0;       ///< of the window, which begins with m_bytes
    std::size_t m_validated = 0; ///< up to here the bytes are whole characters of UTF-8
    qint64 m_bytesRead = 0;
    qint64 m_bytesTotal = 0;
    bool m_isAtEnd = false;
    bool m_isEndHeld = false; ///< a mark of the end of text ended the block, and may be the file's
    Encoding m_encoding = Encoding::UTF_8;
};
