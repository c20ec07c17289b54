// Dataset files: any bytes give a dataset or an error that says why; what was made saves and comes
// back the same.
#include <util/dataset/KudGenericDatasetFactory.h>
#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/dataset/KudSelector.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeError.h>

#include <cstdint>
#include <cstdlib>

namespace
{
bool warned = false;

std::unique_ptr<KudADataset> read(const QByteArray& bytes)
{
    try {
        const KuuMemento memento = KuxXmlMementoFile::bytesToMemento(bytes, QStringLiteral("fuzz"));
        return KudGenericDatasetFactory().create(memento, true);
    } catch (const HbeError&) {
        return nullptr;
    }
}

HbiIntervalIntSmallDisjoint masked(const KudMemoryDatasetPoint& points)
{
    return points.getPointTable()->getMaskConst()->selectedRows();
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    HbbDebug::setSink([](HbbDebug::Level, const QString&) { warned = true; });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const std::unique_ptr<KudADataset> dataset = read(bytes);
    const auto* points = KudMemoryDatasetPoint::convert(dataset.get());
    if (points == nullptr || !points->KuuAMementoOriginator::getId().isValid())
        return 0;

    // A text that XML cannot hold is replaced with a warning, and is another one then.
    warned = false;
    const QByteArray saved = KuxXmlMementoFile::mementoToBytes(points->getMemento());
    if (warned)
        return 0;
    const auto again = read(saved);
    const auto* same = KudMemoryDatasetPoint::convert(again.get());
    if (same == nullptr || masked(*same) != masked(*points) ||
        !same->getPointTable()->getDataTable().isEqual(points->getPointTable()->getDataTable()))
        std::abort();
    return 0;
}
