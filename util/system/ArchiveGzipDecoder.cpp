#include "ArchiveGzipDecoder.h"

#include <basic/error/HbeDiskError.h>

#include <zlib.h>

namespace
{
constexpr int MAGIC_SIZE = 2;
constexpr int GZIP_ONLY = 16; // to the size of the window
} // namespace

struct ArchiveGzipDecoder::Context {
    Context() { isReady = inflateInit2(&stream, MAX_WBITS + GZIP_ONLY) == Z_OK; }
    ~Context() { inflateEnd(&stream); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    z_stream stream = {};
    bool isReady = false;
};

bool ArchiveGzipDecoder::accepts(KusArchiveFile& file)
{
    const HbdSpan<const char> bytes = file.peek(MAGIC_SIZE);
    return bytes.size() >= MAGIC_SIZE && bytes[0] == '\x1f' && bytes[1] == '\x8b';
}

ArchiveGzipDecoder::ArchiveGzipDecoder(std::unique_ptr<KusArchiveFile> file)
    : KusArchiveDecoder(std::move(file))
    , m_context(std::make_unique<Context>())
{
    if (!accepts(getFile()))
        getFile().failNotArchive(tr("It is not compressed with gzip."));
    if (!m_context->isReady)
        throw HbeDiskError(tr("Gzip error: %1").arg(qt_error_string(ENOMEM)));
}

ArchiveGzipDecoder::~ArchiveGzipDecoder() = default;

int ArchiveGzipDecoder::_decode(char* out, int capacity)
{
    z_stream& stream = m_context->stream;
    for (;;) {
        if (!m_inMember) {
            if (!accepts(getFile()))
                return 0;
            inflateReset(&stream);
            m_inMember = true;
        }
        const HbdSpan<const char> input = getFile().peek(1);
        // The library takes it as constant, though it does not say so.
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
        stream.avail_in = static_cast<uInt>(input.size());
        stream.next_out = reinterpret_cast<Bytef*>(out);
        stream.avail_out = static_cast<uInt>(capacity);
        const int result = inflate(&stream, Z_NO_FLUSH);
        getFile().consume(input.size() - static_cast<int>(stream.avail_in));
        m_inMember = result != Z_STREAM_END;
        const int count = capacity - static_cast<int>(stream.avail_out);
        if (count > 0)
            return count;
        if (result == Z_BUF_ERROR && input.isEmpty())
            getFile().failCutOff();
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
            getFile().failCorrupted(
                tr("Gzip error: %1")
                    .arg(QString::fromLatin1(stream.msg ? stream.msg : zError(result))),
                getFile().getOffset());
    }
}
