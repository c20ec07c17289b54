#pragma once

#include <util/system/KusArchiveInput.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <functional>
#include <memory>

/// The tar stream of an archive file, decompressed. The file is opened on first use and stays open
/// until the reader goes.
///
/// Which decompressor: a complete suffix "zst" means Zstandard and "gz" gzip; any other name
/// ("a.tar.zst") leaves it to the first bytes of the file: gzip's, or else Zstandard.
///
/// A file that is neither is a HbeUserError "'%1' is not a valid archive file."; else errors as
/// those of ArchiveZstdReader. One thread uses an object.
class KELVANE_UTIL_EXPORT KusArchiveReader : public KusArchiveInput
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveReader)

public:
    enum class Decompressor { ZSTD, GZIP };
    /// AHEAD: threads of its own read and decompress while the caller works on what came before.
    /// Worth it for whoever reads all of it.
    enum class Mode { DIRECT, AHEAD };

    explicit KusArchiveReader(const QString& archivePath, Mode mode = Mode::DIRECT);
    ~KusArchiveReader() override;
    KusArchiveReader(const KusArchiveReader&) = delete;
    KusArchiveReader& operator=(const KusArchiveReader&) = delete;

    const QString& getPath() const { return m_path; }

    /// Called for each piece of the file before it is read, in whatever thread that is; what it
    /// throws ends the stream. So a cancel is seen in a file of which nothing comes, too. To be set
    /// before the first use.
    void setCheck(std::function<void()> check);

    /// Opens the file if that is still to be done.
    Decompressor getDecompressor();
    /// Of the compressed file, in bytes, as it was when opened.
    qint64 getFileSize();
    /// Of the compressed file: the bytes read so far.
    qint64 getReadSize() const;
    /// Whether what was read so far is covered by a checksum of the compression format.
    bool hasChecksum() const;

protected:
    HbdSpan<const char> _next(int most) override;

private:
    struct Private;
    QString m_path;
    std::unique_ptr<Private> m;
};
