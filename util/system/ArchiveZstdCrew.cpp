#include "ArchiveZstdCrew.h"

#include "ArchiveZstdBlock.h"
#include "KusArchiveDecoder.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <exception>
#include <new>

#include <xxhash.h>
#include <zstd.h>

namespace
{
// What is in memory is a segment for each thread, as it is in the file, and the content of two
// more.
constexpr int MOST_THREADS = 4;
constexpr int MORE_SLOTS = 2;
constexpr int MOST_CONTENT = 2 << 20;

// The head of a frame: magic number, flags, window (RFC 8878, 3.1.1.1).
constexpr int HEAD_SIZE = 6;
constexpr int FLAGS_PLACE = 4;
constexpr int WINDOW_PLACE = 5;
constexpr char CHECKSUM_ALONE = 1 << 2; // neither size nor dictionary
constexpr char LAST_BLOCK = 1;

constexpr int CHECKSUM_SIZE = 4;
constexpr qint64 PIECE = 1 << 20;

/// A smaller window makes blocks smaller, and one decoder minds that, the other does not; nor does
/// either take just any large one.
bool isUsualWindow(char byte)
{
    const int log = 10 + (static_cast<unsigned char>(byte) >> 3);
    return log >= 17 && log <= 26;
}

int segmentSizeInFile(int contentSize)
{
    const int blockSize = ArchiveZstdBlock::HEADER_SIZE + ArchiveZstdBlock::MAX_SIZE;
    return contentSize / ArchiveZstdBlock::MAX_SIZE * blockSize;
}
} // namespace

/// A segment as a frame of its own.
struct ArchiveZstdCrew::Segment {
    std::unique_ptr<char[]> bytes;
    int size = 0;
    qint64 index = 0;
    bool isLast = false;
    bool isFailed = false;
};

class ArchiveZstdCrew::Decompressor
{
public:
    Decompressor() = default;
    ~Decompressor() { ZSTD_freeDCtx(m_context); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    /// The size of the content; -1: it has a fault.
    int run(const Segment& segment, char* content, int capacity)
    {
        if (segment.isFailed || m_context == nullptr)
            return -1;
        const std::size_t size =
            ZSTD_decompressDCtx(m_context, content, std::size_t(capacity), segment.bytes.get(),
                                std::size_t(segment.size));
        const bool isRight = !ZSTD_isError(size) && (segment.isLast || int(size) == capacity);
        return isRight ? int(size) : -1;
    }

private:
    ZSTD_DCtx* m_context = ZSTD_createDCtx();
};

class ArchiveZstdCrew::Hash
{
public:
    Hash()
    {
        if (m_state == nullptr)
            throw std::bad_alloc();
        XXH64_reset(m_state, 0);
    }
    ~Hash() { XXH64_freeState(m_state); }
    Hash(const Hash&) = delete;
    Hash& operator=(const Hash&) = delete;

    void add(HbdSpan<const char> bytes)
    {
        XXH64_update(m_state, bytes.data(), std::size_t(bytes.size()));
    }
    quint64 get() const { return XXH64_digest(m_state); }

private:
    XXH64_state_t* m_state = XXH64_createState();
};

std::unique_ptr<ArchiveZstdCrew> ArchiveZstdCrew::create(KusArchiveFile& file)
{
    ArchiveZstdSegments::Bytes tail;
    const qint64 frameSize = file.getSize() - ArchiveZstdSegments::SIZE;
    if (frameSize < HEAD_SIZE || !file.readAt(frameSize, tail.data(), ArchiveZstdSegments::SIZE))
        return nullptr;
    const auto segments = ArchiveZstdSegments::decode(tail);
    if (!segments || segments->frameSize != frameSize || segments->contentSize > MOST_CONTENT ||
        segments->contentSize % ArchiveZstdBlock::MAX_SIZE != 0)
        return nullptr;
    const HbdSpan<const char> head = file.peek(HEAD_SIZE);
    if (head.size() < HEAD_SIZE || qFromLittleEndian<quint32>(head.data()) != ZSTD_MAGICNUMBER ||
        head[FLAGS_PLACE] != CHECKSUM_ALONE || !isUsualWindow(head[WINDOW_PLACE]))
        return nullptr;
    try {
        std::unique_ptr<ArchiveZstdCrew> crew(
            new ArchiveZstdCrew(file, *segments, head[WINDOW_PLACE]));
        return crew->start() ? std::move(crew) : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr; // one thread takes less
    }
}

ArchiveZstdCrew::ArchiveZstdCrew(KusArchiveFile& file, const ArchiveZstdSegments& segments,
                                 char windowByte)
    : m_file(file)
    , m_segments(segments)
    , m_windowByte(windowByte)
    , m_hash(std::make_unique<Hash>())
{
}

ArchiveZstdCrew::~ArchiveZstdCrew()
{
    stop();
}

void ArchiveZstdCrew::stop()
{
    if (m_threads.empty())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopped = true;
    }
    m_released.notify_all();
    m_file.cancel();
    for (std::thread& thread : m_threads)
        thread.join();
    m_threads.clear();
}

/// False where there is no thread to be had; the file is then as it was.
bool ArchiveZstdCrew::start()
{
    const int count = std::clamp(int(std::thread::hardware_concurrency()), 1, MOST_THREADS);
    m_slots.resize(std::size_t(count + MORE_SLOTS));
    for (Slot& slot : m_slots)
        slot.content.reset(new char[std::size_t(m_segments.contentSize)]);
    m_segmentsAtWork.resize(std::size_t(count));
    const int size = HEAD_SIZE + segmentSizeInFile(m_segments.contentSize);
    for (Segment& segment : m_segmentsAtWork)
        segment.bytes.reset(new char[std::size_t(size)]);
    m_threads.reserve(std::size_t(count));
    const std::lock_guard<std::mutex> lock(m_turn); // none reads yet
    try {
        for (Segment& segment : m_segmentsAtWork)
            m_threads.emplace_back([this, &segment] { work(segment); });
    } catch (const std::exception&) { // no thread, or no memory for one
        if (m_threads.empty())
            return false;
    }
    m_file.consume(HEAD_SIZE);
    m_readSize = HEAD_SIZE;
    return true;
}

void ArchiveZstdCrew::work(Segment& segment)
{
    Decompressor decompressor;
    while (readNext(segment) && waitForSlot(segment.index)) {
        char* const content = slotOf(segment.index).content.get();
        publish(segment, decompressor.run(segment, content, m_segments.contentSize));
    }
}

// Reading

/// False when there is none.
bool ArchiveZstdCrew::readNext(Segment& segment)
{
    const std::lock_guard<std::mutex> lock(m_turn);
    if (m_isReadingEnded)
        return false;
    segment.index = m_readCount++;
    try {
        segment.isFailed = !readBlocks(segment) || (segment.isLast && !readEnd());
    } catch (...) {
        segment.isFailed = true;
    }
    m_isReadingEnded = segment.isFailed || segment.isLast;
    return true;
}

bool ArchiveZstdCrew::readBlocks(Segment& segment)
{
    char* at = segment.bytes.get();
    qToLittleEndian<quint32>(ZSTD_MAGICNUMBER, at);
    at[FLAGS_PLACE] = 0;
    at[WINDOW_PLACE] = m_windowByte;
    at += HEAD_SIZE;
    char* header = at;
    segment.isLast = false;
    const int count = m_segments.contentSize / ArchiveZstdBlock::MAX_SIZE;
    for (int i = 0; i < count && !segment.isLast; ++i) {
        header = at;
        if (!read(header, ArchiveZstdBlock::HEADER_SIZE))
            return false;
        const ArchiveZstdBlock block(header);
        at += ArchiveZstdBlock::HEADER_SIZE;
        if (!block.isValid || !read(at, block.size))
            return false;
        at += block.size;
        segment.isLast = block.isLast;
    }
    *header = static_cast<char>(*header | LAST_BLOCK);
    segment.size = int(at - segment.bytes.get());
    return true;
}

/// What stands behind the last block.
bool ArchiveZstdCrew::readEnd()
{
    char checksum[CHECKSUM_SIZE];
    ArchiveZstdSegments::Bytes segments;
    if (!read(checksum, CHECKSUM_SIZE) || m_readSize != m_segments.frameSize ||
        !read(segments.data(), ArchiveZstdSegments::SIZE))
        return false;
    m_checksum = qFromLittleEndian<quint32>(checksum);
    return true;
}

bool ArchiveZstdCrew::read(char* data, int count)
{
    while (count > 0) {
        const HbdSpan<const char> bytes = m_file.peek(1);
        if (bytes.isEmpty())
            return false;
        const int part = std::min(count, bytes.size());
        std::copy_n(bytes.data(), part, data);
        m_file.consume(part);
        m_readSize += part;
        data += part;
        count -= part;
    }
    return true;
}

// Handing over

/// False when nobody wants more.
bool ArchiveZstdCrew::waitForSlot(qint64 index)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_released.wait(
        lock, [&] { return m_isStopped || index < m_releasedCount + qint64(m_slots.size()); });
    return !m_isStopped;
}

/// A negative size is that of a segment with a fault.
void ArchiveZstdCrew::publish(const Segment& segment, int size)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        Slot& slot = slotOf(segment.index);
        slot.size = std::max(size, 0);
        slot.isFailed = size < 0;
        slot.isLast = segment.isLast;
        slot.isReady = true;
    }
    m_published.notify_one();
}

void ArchiveZstdCrew::takeSegment()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_takenCount > 0) {
        slotOf(m_takenCount - 1).isReady = false;
        m_releasedCount = m_takenCount;
        m_released.notify_all();
    }
    m_published.wait(lock, [this] { return slotOf(m_takenCount).isReady; });
    ++m_takenCount;
    m_given = 0;
}

std::optional<HbdSpan<const char>> ArchiveZstdCrew::next(int most)
{
    const auto isAtEnd = [this] {
        const Slot& slot = slotOf(m_takenCount - 1);
        return m_given == slot.size && !slot.isFailed && !slot.isLast;
    };
    while (m_takenCount == 0 || isAtEnd())
        takeSegment();
    const Slot& slot = slotOf(m_takenCount - 1);
    // The checksum is known with the last segment.
    if (slot.isFailed ||
        (m_given == slot.size && static_cast<quint32>(m_hash->get()) != m_checksum))
        return std::nullopt;
    const int count = std::min(most, slot.size - m_given);
    const HbdSpan<const char> bytes(slot.content.get() + m_given, count);
    m_hash->add(bytes);
    m_given += count;
    m_position += count;
    return bytes;
}

bool ArchiveZstdCrew::moveHere(KusArchiveDecoder& decoder, const std::function<void()>& check) const
{
    Hash hash;
    for (qint64 left = m_position; left > 0;) {
        if (check)
            check();
        const HbdSpan<const char> bytes = decoder.next(int(std::min(left, PIECE)));
        if (bytes.isEmpty())
            return false;
        hash.add(bytes);
        left -= bytes.size();
    }
    return hash.get() == m_hash->get();
}
