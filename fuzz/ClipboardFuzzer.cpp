// Blocks from a foreign clipboard: reading any bytes ends; a block in our own form is written the
// same again; and pasting any block into a table of all kinds of variables writes or refuses each
// of its cells.
#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudTableBlock.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTablePaste.h>
#include <util/dataset/KudTableUtils.h>

#include <basic/base/HbbDebug.h>
#include <basic/data/HbdVariableEnum.h>

#include <QtCore/QMimeData>

#include <cstdint>
#include <cstdlib>

namespace
{
constexpr int SAMPLE_COUNT = 5;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

HbdDataTable emptyColumns()
{
    HbdDataTable table;
    for (const HbdEVarType& type : HbdEVarType::createIterator()) {
        auto column = HbdAVariable::create(HbdVariableDetails(type.getKey().toLower(), type));
        if (auto* categories = dynamic_cast<HbdVariableEnum*>(column.get())) {
            HbdEnumCatalog catalog;
            catalog.addCategory(1, QStringLiteral("Ag"));
            categories->setCatalog(catalog);
        }
        table.addVariable(std::move(column));
    }
    table.setSampleCount(SAMPLE_COUNT);
    return table;
}

qint64 cellCount(const KudTableBlock& block)
{
    qint64 count = 0;
    for (int row = 0; row < block.getRowCount(); ++row) {
        for (int column = 0; column < block.getRowSize(row); ++column)
            count += block.hasCell(row, column);
    }
    return count;
}

void tryPaste(const KudTableBlock& block, bool byName, bool append, bool scattered)
{
    KudMemoryDataTable table(QStringLiteral("Points"));
    table.setDataTable(emptyColumns());
    KudTablePaste::Target target;
    target.byName = byName;
    target.append = append;
    if (scattered)
        target.ranks = {3, 0, -1, 3, 7};
    KudTablePaste paste(table);
    paste.paste(block, target);
    require(paste.getWrittenCount() + paste.getRefusedCount() ==
            cellCount(byName ? block.withNames() : block));
    require(table.getSampleCount() == SAMPLE_COUNT + paste.getAppendedCount());
}

/// The columns of a typed block, but for their names and gaps, through a table and back.
void tryAgain(const KudTableBlock& block)
{
    HbdDataTable columns;
    for (int c = 0; c < block.getColumnCount(); ++c) {
        auto column = block.getValues(c)->clone();
        column->setName(QString::number(c));
        columns.addVariable(std::move(column));
    }
    KudMemoryDataTable table(QStringLiteral("Points"));
    table.setDataTable(std::move(columns));
    const auto ownForm = [&table] {
        const HbiIntervalIntSmall all(0, 1 << 20);
        const std::unique_ptr<QMimeData> data(
            KudTableUtils::encodeForClipboard(table.getModel(), all, all));
        return data->data(QLatin1String(KudTableUtils::KELVANE_MIME_DATA));
    };
    const QByteArray bytes = ownForm();
    const auto again = KudTableBlock::fromOwnForm(bytes);
    require(again.has_value());
    for (int c = 0; c < block.getColumnCount(); ++c)
        require(again->getValues(c)->isEqual(*table.readValues(table.getVariableAt(c))));
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    HbbDebug::setSink([](HbbDebug::Level, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));
    const bool isText = (data[0] & 8) != 0;
    const auto own = isText ? std::nullopt : KudTableBlock::fromOwnForm(bytes);
    const KudTableBlock block = own ? *own : KudTableBlock::fromText(QString::fromUtf8(bytes));
    if (own)
        tryAgain(block);
    tryPaste(block, (data[0] & 1) != 0, (data[0] & 2) != 0, (data[0] & 4) != 0);
    block.toRows(data[0] % 3, {}, {}, {{QStringLiteral("real"), 2}});
    return 0;
}
