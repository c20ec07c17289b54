// A tar stream: any bytes are read to an end or refused, whatever the pieces that they come in; no
// more is read than there is, and a name without fault leads nowhere upwards.
#include "FuzzTarget.h"

#include "../testing/MemoryInput.h"

#include <util/system/KusMemberPath.h>
#include <util/system/KusTarReader.h>

#include <basic/error/HbeUserError.h>

namespace
{
/// What reading comes to: the names and sizes of the members, or the error behind them.
QString read(const QByteArray& stream, bool other, int piece)
{
    MemoryInput input(stream, piece);
    KusTarReader tar(input, QStringLiteral("a.tar"));
    tar.setReadOtherTools(other);
    QString outcome;
    qint64 total = 0;
    try {
        while (tar.nextMember()) {
            const QByteArray& name = tar.getName();
            if (KusMemberPath::findFault(name).isEmpty())
                require(!KusMemberPath::split(name).contains(".."));
            KusMemberPath::getFoldedHash(name);
            qint64 size = 0;
            for (auto data = tar.readData(1000); !data.isEmpty(); data = tar.readData(1000))
                size += data.size();
            require(size == tar.getSize() && (size == 0 || !tar.isDirectory()));
            total += size;
            outcome +=
                tar.getNameText() + QLatin1Char('\n') + QString::number(size) + QLatin1Char('\n');
        }
        require(tar.getTotalSize() == total && total <= stream.size());
        require(tar.getAnnouncedSize() < 0 || total <= tar.getAnnouncedSize());
        tar.readToEnd();
        require(input.getReadSize() == stream.size());
    } catch (const HbeUserError& error) {
        outcome += error.getMessage();
    }
    return outcome;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray stream(reinterpret_cast<const char*>(data), static_cast<int>(size));
    for (const bool other : {false, true})
        require(read(stream, other, 1 << 16) == read(stream, other, 300));
    return 0;
}
