#include "KudTableBlockData.h"
#include "KudTableBlockForm.h"

#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>

#include <algorithm>
#include <charconv>
#include <type_traits>

// Blocks from our own form.

namespace
{
template <class Column>
bool isAllowed(const typename Column::Value& value)
{
    if constexpr (std::is_same_v<Column, HbdVariableSelection>)
        return value <= 1;
    if constexpr (std::is_same_v<Column, HbdVariableColor>)
        return value >= 0xFF000000U; // opaque
    return !Column::isUndefinedValue(value);
}

/// Stores a cell that is not empty; false when the column cannot hold what its bytes say.
using Store = bool (*)(HbdAVariable& column, int row, std::string_view bytes);

template <class Column>
bool storeNumber(HbdAVariable& column, int row, std::string_view bytes)
{
    typename Column::Value value;
    const char* const end = bytes.data() + bytes.size();
    const std::from_chars_result result = std::from_chars(bytes.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !isAllowed<Column>(value))
        return false;
    static_cast<Column&>(column).set(row, value);
    return true;
}

bool storeText(HbdAVariable& column, int row, std::string_view bytes)
{
    const std::optional<QString> text = KudTableBlockForm::readEscaped(
        bytes == KudTableBlockForm::EMPTY_TEXT ? std::string_view() : bytes);
    if (text)
        static_cast<HbdVariableText&>(column).set(row, *text);
    return text.has_value();
}

Store storeOf(const HbdAVariable& column)
{
    switch (column.getType().toEnum()) {
    case HbdEVarType::E_REAL_32:
        return storeNumber<HbdVariableReal32>;
    case HbdEVarType::E_INTEGER:
        return storeNumber<HbdVariableInteger>;
    case HbdEVarType::E_TEXT:
        return storeText;
    case HbdEVarType::E_CATEGORY:
        return storeNumber<HbdVariableEnum>;
    case HbdEVarType::E_COLOR:
        return storeNumber<HbdVariableColor>;
    case HbdEVarType::E_ALPHA_CHANNEL:
        return storeNumber<HbdVariableAlpha>;
    case HbdEVarType::E_SELECTION:
        return storeNumber<HbdVariableSelection>;
    case HbdEVarType::E_DATE:
        return storeNumber<HbdVariableDate>;
    default:
        return storeNumber<HbdVariableReal>;
    }
}
} // namespace

class KudTableBlock::OwnReader
{
public:
    explicit OwnReader(std::string_view bytes)
        : m_bytes(bytes)
        , m_data(std::make_shared<Data>())
    {
    }

    /// Null when the bytes are not whole and right.
    std::shared_ptr<const Data> read()
    {
        if (!findSize())
            return nullptr;
        for (int row = 0; row < m_data->rowCount; ++row) {
            for (int column = 0; column < m_data->columnCount; ++column) {
                std::string_view cell;
                if (!takeCell(column, cell) || (row == 0 && !declareColumn(cell)) ||
                    !storeCell(row, column, cell))
                    return nullptr;
            }
        }
        return m_data;
    }

private:
    /// Every row has as many cells as the first. So the cells are no more than the bytes, whatever
    /// the bytes are.
    bool findSize()
    {
        if (m_bytes.empty() || m_bytes.back() != '\n')
            return false;
        const auto count = [this](std::size_t size, char byte) {
            return static_cast<qint64>(std::count(m_bytes.begin(), m_bytes.begin() + size, byte));
        };
        const qint64 rows = count(m_bytes.size(), '\n');
        const qint64 columns = count(m_bytes.find('\n'), '\t') + 1;
        if (count(m_bytes.size(), '\t') != rows * (columns - 1))
            return false;
        Data::checkCount(rows * columns);
        m_data->isTyped = true;
        m_data->rowCount = static_cast<int>(rows);
        m_data->columnCount = static_cast<int>(columns);
        m_data->gaps.resize(static_cast<std::size_t>(columns));
        return true;
    }

    /// Up to the next tab, or in the last column line feed. One of the other kind within the cell
    /// is no part of any value, so storing it fails.
    bool takeCell(int column, std::string_view& cell)
    {
        const char delimiter = column + 1 == m_data->columnCount ? '\n' : '\t';
        const std::size_t size = m_bytes.find(delimiter);
        if (size == std::string_view::npos)
            return false;
        cell = m_bytes.substr(0, size);
        m_bytes.remove_prefix(size + 1);
        return true;
    }

    bool declareColumn(std::string_view& cell)
    {
        std::unique_ptr<HbdAVariable> column = KudTableBlockForm::readDeclaration(cell);
        if (column == nullptr)
            return false;
        column->resize(m_data->rowCount);
        m_stores.push_back(storeOf(*column));
        m_data->columns.push_back(std::move(column));
        return true;
    }

    bool storeCell(int row, int column, std::string_view cell)
    {
        const auto place = static_cast<std::size_t>(column);
        if (cell.empty())
            return true;
        if (cell != KudTableBlockForm::NO_CELL)
            return m_stores[place](*m_data->columns[place], row, cell);
        QBitArray& gaps = m_data->gaps[place];
        if (gaps.isEmpty())
            gaps.resize(m_data->rowCount);
        gaps.setBit(row);
        return true;
    }

    std::string_view m_bytes; // what is not yet read
    std::shared_ptr<Data> m_data;
    std::vector<Store> m_stores;
};

std::optional<KudTableBlock> KudTableBlock::fromOwnForm(const QByteArray& bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    KudTableBlock block;
    block.m_data = OwnReader(std::string_view(bytes.constData(), size)).read();
    return block.m_data != nullptr ? std::optional(block) : std::nullopt;
}
