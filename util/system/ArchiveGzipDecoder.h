#pragma once

#include "KusArchiveDecoder.h"

/// Decodes the members of a gzip file, one after the other; see ArchiveGzipReader.
class ArchiveGzipDecoder : public KusArchiveDecoder
{
    Q_DECLARE_TR_FUNCTIONS(ArchiveGzipDecoder)

public:
    /// Whether the file begins with a member.
    static bool accepts(KusArchiveFile& file);

    explicit ArchiveGzipDecoder(std::unique_ptr<KusArchiveFile> file);
    ~ArchiveGzipDecoder() override;

    bool hasChecksum() const override { return true; }

protected:
    int _decode(char* out, int capacity) override;

private:
    struct Context;
    std::unique_ptr<Context> m_context;
    bool m_inMember = true;
};
