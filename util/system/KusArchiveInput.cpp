#include <util/system/KusArchiveInput.h>

#include <algorithm>
#include <cstring>

namespace
{
constexpr qint64 LONGEST_PIECE = 1 << 20;

int piece(qint64 size)
{
    return static_cast<int>(std::min(size, LONGEST_PIECE));
}
} // namespace

KusArchiveInput::~KusArchiveInput() = default;

qint64 KusArchiveInput::read(char* data, qint64 size)
{
    qint64 done = 0;
    while (done < size) {
        const HbdSpan<const char> bytes = next(piece(size - done));
        if (bytes.isEmpty())
            break;
        std::memcpy(data + done, bytes.data(), static_cast<std::size_t>(bytes.size()));
        done += bytes.size();
    }
    return done;
}

qint64 KusArchiveInput::skip(qint64 size)
{
    qint64 done = 0;
    while (done < size) {
        const HbdSpan<const char> bytes = next(piece(size - done));
        if (bytes.isEmpty())
            break;
        done += bytes.size();
    }
    return done;
}
