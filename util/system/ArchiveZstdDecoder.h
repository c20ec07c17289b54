#pragma once

#include "KusArchiveDecoder.h"

/// Decodes Zstandard frames, one after the other; see ArchiveZstdReader.
class ArchiveZstdDecoder : public KusArchiveDecoder
{
    Q_DECLARE_TR_FUNCTIONS(ArchiveZstdDecoder)

public:
    /// Whether the file begins with a frame.
    static bool accepts(KusArchiveFile& file);

    explicit ArchiveZstdDecoder(std::unique_ptr<KusArchiveFile> file);
    ~ArchiveZstdDecoder() override;

    bool hasChecksum() const override { return m_anyFrame && m_allChecked; }

protected:
    int _decode(char* out, int capacity) override;

private:
    struct Context;
    bool beginFrame();
    int feed(int size, char* out, int capacity);

    std::unique_ptr<Context> m_context;
    std::size_t m_hint = 0; // how much the frame needs next; 0: between frames
    bool m_full = false;    // more stands ready than there was room for
    std::atomic<bool> m_anyFrame{false};
    std::atomic<bool> m_allChecked{true};
};
