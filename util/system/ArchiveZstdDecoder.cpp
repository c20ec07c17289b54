#include "ArchiveZstdDecoder.h"

#include <basic/error/HbeDiskError.h>

#include <algorithm>

#include <zstd.h>

namespace
{
constexpr int MAGIC_SIZE = 4;
// The magic number and the byte of flags: not yet a whole header.
constexpr int FRAME_HEAD = MAGIC_SIZE + 1;
constexpr int CHECKSUM_FLAG = 1 << 2;
// What the library proposes to read holds the header of the next block.
constexpr std::size_t BLOCK_HEADER = 3;

bool isMagic(const HbdSpan<const char>& bytes, bool& skippable)
{
    if (bytes.size() < MAGIC_SIZE)
        return false;
    quint32 magic = 0;
    for (int i = MAGIC_SIZE; i-- > 0;)
        magic = magic << 8 | static_cast<unsigned char>(bytes[i]);
    skippable = (magic & ZSTD_MAGIC_SKIPPABLE_MASK) == ZSTD_MAGIC_SKIPPABLE_START;
    return skippable || magic == ZSTD_MAGICNUMBER;
}
} // namespace

struct ArchiveZstdDecoder::Context {
    Context() = default;
    ~Context() { ZSTD_freeDCtx(stream); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    ZSTD_DCtx* stream = ZSTD_createDCtx();
};

bool ArchiveZstdDecoder::accepts(KusArchiveFile& file)
{
    bool skippable = false;
    return isMagic(file.peek(MAGIC_SIZE), skippable);
}

ArchiveZstdDecoder::ArchiveZstdDecoder(std::unique_ptr<KusArchiveFile> file)
    : KusArchiveDecoder(std::move(file))
    , m_context(std::make_unique<Context>())
{
    if (!accepts(getFile()))
        getFile().failNotArchive(tr("It is not compressed with Zstandard."));
    if (m_context->stream == nullptr)
        throw HbeDiskError(tr("Zstd error: %1").arg(qt_error_string(ENOMEM)));
}

ArchiveZstdDecoder::~ArchiveZstdDecoder() = default;

int ArchiveZstdDecoder::_decode(char* out, int capacity)
{
    for (;;) {
        if (m_hint == 0 && !beginFrame())
            return 0;
        // One block a call, without the header of the next: the library forgets in a call that
        // fails what it has put out before.
        const std::size_t wanted = m_hint > BLOCK_HEADER ? m_hint - BLOCK_HEADER : m_hint;
        int size = 0;
        if (!m_full) {
            size = static_cast<int>(
                std::min(wanted, static_cast<std::size_t>(getFile().peek(1).size())));
            if (size == 0)
                getFile().failCutOff();
        }
        const int count = feed(size, out, capacity);
        if (count > 0)
            return count;
    }
}

// The head of a frame is fed apart, for a frame that the library sees as a whole it decodes at
// once, and then puts out nothing of one that is damaged.
bool ArchiveZstdDecoder::beginFrame()
{
    const HbdSpan<const char> head = getFile().peek(FRAME_HEAD);
    if (head.isEmpty())
        return false;
    bool skippable = false;
    if (!isMagic(head, skippable))
        getFile().failCorrupted(tr("what follows the compressed data is none"),
                                getFile().getOffset());
    if (!skippable && head.size() >= FRAME_HEAD) {
        m_anyFrame = true;
        m_allChecked = m_allChecked && (head[MAGIC_SIZE] & CHECKSUM_FLAG) != 0;
    }
    feed(std::min(head.size(), FRAME_HEAD), nullptr, 0);
    m_full = false;
    return true;
}

int ArchiveZstdDecoder::feed(int size, char* out, int capacity)
{
    const qint64 offset = getFile().getOffset();
    ZSTD_inBuffer input = {getFile().peek(size).data(), static_cast<std::size_t>(size), 0};
    ZSTD_outBuffer output = {out, static_cast<std::size_t>(capacity), 0};
    m_hint = ZSTD_decompressStream(m_context->stream, &output, &input);
    if (ZSTD_isError(m_hint)) {
        const QString fault = QString::fromLatin1(ZSTD_getErrorName(m_hint));
        m_hint = 0;
        getFile().failCorrupted(tr("Zstd error: %1").arg(fault), offset);
    }
    getFile().consume(static_cast<int>(input.pos));
    m_full = m_hint != 0 && output.pos == output.size;
    return static_cast<int>(output.pos);
}
