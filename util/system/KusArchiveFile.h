#pragma once

#include <basic/data/HbdSpan.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class KusArchiveFeeder;

/// The bytes of a compressed file, for a decoder: read in steps that grow, so that whoever wants
/// the head of an archive only does not read much more than that.
///
/// A file that cannot be opened or read is a HbeDiskError; one that is no regular file, or empty,
/// is a HbeUserError. One thread reads; any may ask for the sizes, or cancel.
class KusArchiveFile
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveFile)

public:
    /// Opens the file. A link is followed; nothing that would wait, as a pipe does, is opened.
    /// `check` is called before each reading and may throw.
    explicit KusArchiveFile(const QString& path, std::function<void()> check = nullptr);
    ~KusArchiveFile();
    KusArchiveFile(const KusArchiveFile&) = delete;
    KusArchiveFile& operator=(const KusArchiveFile&) = delete;

    /// What comes next: at least `least` bytes (of at most 16 KiB) but at the end of the file, and
    /// as many more as there are in memory.
    HbdSpan<const char> peek(int least);
    void consume(int count) { m_begin += count; }

    /// Reads bytes from anywhere in the file; false where it has less.
    bool readAt(qint64 offset, char* data, int size) const;

    /// Of the next byte in the file.
    qint64 getOffset() const { return m_readSize - (m_end - m_begin); }
    /// The most that was read so far; reading again does not lower it.
    qint64 getReadSize() const { return std::max<qint64>(m_readSize, m_readBefore); }
    qint64 getSize() const { return m_size; }

    /// From now on a thread reads ahead, once it is known to be worth it.
    void allowReadAhead() { m_mayReadAhead = true; }
    /// Goes back to the first byte, also after a cancel. Not while anybody reads, nor once a thread
    /// reads ahead.
    void rewind();

    /// From now on the file is at its end, for a thread that reads and shall stop.
    void cancel() { m_cancelled = true; }

    /// HbeUserError: "'%1' is not a valid archive file." and why.
    [[noreturn]] void failNotArchive(const QString& reason) const;
    /// HbeUserError: "Corrupted archive file '%1' (…)." with the place.
    [[noreturn]] void failCorrupted(const QString& fault, qint64 offset) const;
    [[noreturn]] void failCutOff() const;

private:
    void refill();
    void read(int count);
    void takeAhead();
    [[noreturn]] void failToRead(int error) const;

    QString m_path;
    std::function<void()> m_check;
    int m_descriptor = -1;
    qint64 m_size = 0;
    std::vector<char> m_buffer;
    char* m_data = nullptr; // of the buffer, or of a piece that was read ahead
    int m_begin = 0;
    int m_end = 0;
    int m_step;
    std::atomic<qint64> m_readSize{0};
    std::atomic<qint64> m_readBefore{0}; // ahead of rewinding
    std::atomic<bool> m_cancelled{false};
    bool m_mayReadAhead = false;
    std::unique_ptr<KusArchiveFeeder> m_feeder; // uses the descriptor
};
