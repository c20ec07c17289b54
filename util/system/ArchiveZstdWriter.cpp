#include <util/system/ArchiveZstdWriter.h>

#include "ArchiveZstdBlockCounter.h"
#include "ArchiveZstdSegments.h"

#include <util/system/KusSafeFile.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstring>
#include <optional>
#include <thread>
#include <vector>

#include <zstd.h>

namespace
{
QString tr(const char* text)
{
    return QCoreApplication::translate("ArchiveZstdWriter", text);
}

// What a level takes of memory, besides its usual values: tables of each thread, and for each
// thread and three more a job that waits, and the same again for what comes of it where the data do
// not compress. 0 is the library's own value. The bytes written depend on all but the number of
// threads. A thread that is done waits until the library gets to it, at times half as long as a job
// of 1 MiB takes: at the fastest levels the jobs are larger. Where a job does not look back at the
// one before, its bytes are a segment (ArchiveZstdSegments): that costs up to 0.6 % of size, at the
// highest levels several times as much.
struct Frugality {
    int lastLevel;
    int windowLog;
    int chainLog;
    int hashLog;
    int jobSize;
    int mostThreads;
    bool hasSegments;
};
constexpr Frugality FRUGALITIES[] = {
    {2, 0, 0, 0, 2 << 20, 3, true},
    {4, 20, 17, 17, 1 << 20, 3, true},
    {12, 20, 18, 18, 1 << 20, 3, true},
    {ArchiveZstdWriter::MAX_LEVEL, 20, 19, 18, 1 << 20, 2, false},
};

// Between two starts of flushing.
constexpr qint64 FLUSH_STEP = 8 << 20;

// Of a frame that says neither its size nor a dictionary.
constexpr int FRAME_HEAD_SIZE = 6;

constexpr int NO_OVERLAP = 1; // in the library's words

std::size_t check(std::size_t result)
{
    if (ZSTD_isError(result))
        throw HbeDiskError(
            tr("Zstd error: %1").arg(QString::fromLatin1(ZSTD_getErrorName(result))));
    return result;
}

/// Answers the content of a segment; 0: there are none.
int setUp(ZSTD_CCtx* context, int level, int threadCount)
{
    const Frugality& frugality =
        *std::find_if(std::begin(FRUGALITIES), std::end(FRUGALITIES) - 1,
                      [level](const Frugality& row) { return level <= row.lastLevel; });
    if (threadCount <= 0)
        threadCount = static_cast<int>(std::thread::hardware_concurrency());
    threadCount = std::clamp(threadCount, 1, frugality.mostThreads);

    check(ZSTD_CCtx_setParameter(context, ZSTD_c_compressionLevel, level));
    check(ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1));
    check(ZSTD_CCtx_setParameter(context, ZSTD_c_windowLog, frugality.windowLog));
    check(ZSTD_CCtx_setParameter(context, ZSTD_c_chainLog, frugality.chainLog));
    check(ZSTD_CCtx_setParameter(context, ZSTD_c_hashLog, frugality.hashLog));
    // A library without threads refuses; it then compresses in ours.
    if (ZSTD_isError(ZSTD_CCtx_setParameter(context, ZSTD_c_nbWorkers, threadCount)))
        return 0;
    check(ZSTD_CCtx_setParameter(context, ZSTD_c_jobSize, frugality.jobSize));
    if (!frugality.hasSegments)
        return 0;
    check(ZSTD_CCtx_setParameter(context, ZSTD_c_overlapLog, NO_OVERLAP));
    return frugality.jobSize;
}
} // namespace

struct ArchiveZstdWriter::Private {
    explicit Private(const QString& filePath)
        : path(filePath)
        , file(filePath)
    {
    }
    ~Private() { endContext(); }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    void endContext()
    {
        ZSTD_freeCCtx(context);
        context = nullptr;
        output = {};
    }
    bool compress(ZSTD_inBuffer input, ZSTD_EndDirective directive);
    bool drain(std::size_t size);
    bool isOfSegments() const;
    bool writeSegments();

    const QString path;
    KusSafeFile file;
    ZSTD_CCtx* context = nullptr; // not null: open
    std::vector<char> output;
    std::size_t filled = 0;
    int segmentSize = 0;    // 0: none
    qint64 contentSize = 0; // of all
    std::optional<ArchiveZstdBlockCounter> blocks;
    qint64 written = 0;
    qint64 flushedUntil = 0;
    bool isFailed = false;
};

bool ArchiveZstdWriter::Private::drain(std::size_t size)
{
    if (!file.write(output.data(), static_cast<qint64>(size))) {
        isFailed = true;
        return false;
    }
    if (blocks)
        blocks->add(output.data(), static_cast<qint64>(size));
    filled = 0;
    written += static_cast<qint64>(size);
    // So that little is left to wait for at the end. That it fails, `commit` will tell.
    if (written - flushedUntil >= FLUSH_STEP) {
        file.startFlush();
        flushedUntil = written;
    }
    return true;
}

bool ArchiveZstdWriter::Private::compress(ZSTD_inBuffer input, ZSTD_EndDirective directive)
{
    const bool isLast = directive == ZSTD_e_end;
    std::size_t left = 0;
    do {
        ZSTD_outBuffer out = {output.data(), output.size(), filled};
        left = check(ZSTD_compressStream2(context, &out, &input, directive));
        filled = out.pos;
        if (filled == output.size() && !drain(filled))
            return false;
    } while (isLast ? left != 0 : input.pos < input.size);
    return !isLast || drain(filled);
}

/// Whether the jobs are full blocks all through, of which a reader knows where a job begins. The
/// library may part blocks where that makes them smaller.
bool ArchiveZstdWriter::Private::isOfSegments() const
{
    const qint64 full = (contentSize + ArchiveZstdBlock::MAX_SIZE - 1) / ArchiveZstdBlock::MAX_SIZE;
    return segmentSize != 0 && contentSize > segmentSize && blocks->getCount() == full;
}

bool ArchiveZstdWriter::Private::writeSegments()
{
    const ArchiveZstdSegments::Bytes bytes = ArchiveZstdSegments{segmentSize, written}.encode();
    std::copy(bytes.begin(), bytes.end(), output.begin());
    return drain(bytes.size());
}

ArchiveZstdWriter::ArchiveZstdWriter(const QString& path)
    : m(std::make_unique<Private>(path))
{
}

ArchiveZstdWriter::~ArchiveZstdWriter() = default;

void ArchiveZstdWriter::open(const char* mode, int level, int threadCount)
{
    if (std::strcmp(mode, "wb") != 0 || level < MIN_LEVEL || level > MAX_LEVEL)
        throw HbeProgrammingError(
            QStringLiteral("An archive is written in the mode \"wb\", at a level from 1 to 19."));
    discard();
    m->written = m->flushedUntil = m->contentSize = 0;
    if (!m->file.open(KusSafeFile::Naming::AT_COMMIT))
        throw HbeDiskError(
            tr("Cannot open for writing '%1'\n%2").arg(m->path, m->file.getErrorString()));
    m->context = ZSTD_createCCtx();
    if (m->context == nullptr) {
        discard();
        throw HbeDiskError(tr("Cannot create Zstd compress context for '%1'").arg(m->path));
    }
    m->output.resize(ZSTD_CStreamOutSize());
    m->segmentSize = setUp(m->context, level, threadCount);
    m->blocks.emplace(FRAME_HEAD_SIZE);
}

bool ArchiveZstdWriter::isOpen() const
{
    return m->context != nullptr;
}

bool ArchiveZstdWriter::write(const char* data, qint64 size)
{
    if (!isOpen())
        throw HbeProgrammingError(QStringLiteral("The archive is not open."));
    m->contentSize += size;
    return !m->isFailed && m->compress({data, static_cast<std::size_t>(size), 0}, ZSTD_e_continue);
}

bool ArchiveZstdWriter::close()
{
    if (!isOpen())
        throw HbeProgrammingError(QStringLiteral("The archive is not open."));
    const bool complete = !m->isFailed && m->compress({nullptr, 0, 0}, ZSTD_e_end) &&
                          (!m->isOfSegments() || m->writeSegments());
    m->endContext();
    const bool done = complete && m->file.commit();
    discard();
    return done;
}

void ArchiveZstdWriter::discard()
{
    m->endContext();
    m->file.discard();
    m->filled = 0;
    m->isFailed = false;
}

QString ArchiveZstdWriter::getTemporaryPath() const
{
    return m->file.getTemporaryPath();
}

qint64 ArchiveZstdWriter::getWrittenSize() const
{
    return m->written;
}

QString ArchiveZstdWriter::getErrorString() const
{
    return m->file.getErrorString();
}
