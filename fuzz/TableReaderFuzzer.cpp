// Any bytes are read as a table or refused with an error; a table that was read is whole, and the
// same whatever the blocks it was read in. The first byte chooses the options.
#include <util/extern/KueTableReader.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace
{
KueTableOptions makeOptions(std::uint8_t choice)
{
    KueTableOptions options;
    options.separator = static_cast<KueTableOptions::Separator>(choice % 5);
    options.decimal = static_cast<KueTableOptions::Decimal>(choice / 5 % 3);
    options.maxLineLength = 1000;
    options.maxColumns = 100;
    if ((choice & 0x40) != 0)
        options.maxCategories = 1;
    if ((choice & 0x80) != 0) {
        options.xColumn = QStringLiteral("x");
        options.textColumns = QStringList{QStringLiteral("t")};
        options.categoryColumns = QStringList{QStringLiteral("c")};
        options.missingTexts = QStringList{QStringLiteral("-9"), QStringLiteral("n")};
    }
    return options;
}

std::optional<KueTableResult> read(const KueTableOptions& options, const QString& path)
{
    try {
        KueTableResult result = KueTableReader(options).read(path);
        if (result.table.getVariableCount() == 0)
            std::abort();
        for (int i = 0; i < result.table.getVariableCount(); ++i) {
            const HbdAVariable& column = *result.table.getVariableAt(i);
            if (column.getCount() != result.table.getSampleCount() ||
                column.getDetails().name.isEmpty())
                std::abort();
        }
        return result;
    } catch (const HbeUserError&) {
        return std::nullopt;
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    static const QTemporaryDir directory;
    static const QString path = directory.filePath(QStringLiteral("table"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        std::abort();
    file.write(reinterpret_cast<const char*>(data + 1), static_cast<qint64>(size - 1));
    file.close();
    KueTableOptions options = makeOptions(*data);
    const std::optional<KueTableResult> whole = read(options, path);
    options.blockSize = 1 + *data % 7;
    const std::optional<KueTableResult> blocks = read(options, path);
    if (whole.has_value() != blocks.has_value() || (whole && !whole->table.isEqual(blocks->table)))
        std::abort();
    return 0;
}
