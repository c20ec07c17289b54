#include "KudTableBlockEncoder.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTableUtils.h>

#include "KudTableBlockForm.h"

#include <basic/data/HbdAVariable.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QAbstractProxyModel>
#include <QtCore/QItemSelectionModel>
#include <QtCore/QMimeData>

#include <array>
#include <map>

namespace
{
constexpr int ROW_BLOCK = 256;

void appendHtml(std::string& out, std::string_view text)
{
    for (const char byte : text) {
        switch (byte) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += byte;
        }
    }
}

/// As spreadsheets quote what would else be a separator.
void appendQuoted(std::string& out, std::string_view text)
{
    if (text.find_first_of("\t\n\r\"") == std::string_view::npos) {
        out += text;
        return;
    }
    out += '"';
    for (const char byte : text)
        out.append(byte == '"' ? 2 : 1, byte);
    out += '"';
}

std::string toUtf8(const QVariant& text)
{
    std::string bytes;
    KudTableBlockForm::appendUtf8(bytes, text.toString());
    return bytes;
}

QString toText(const std::string& bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

HbiIntervalIntSmallDisjoint within(const HbiIntervalIntSmallDisjoint& ranks, int count)
{
    return ranks.intersected(HbiIntervalIntSmall(0, count - 1));
}
} // namespace

KudTableBlockEncoder::KudTableBlockEncoder(const QAbstractItemModel& model, const Ranks& rows,
                                           const Ranks& columns, QChar decimal)
    : m_model(model)
    , m_decimal(decimal)
    , m_rows(within(rows, model.rowCount()))
{
    for (const int section : within(columns, model.columnCount()).ranks()) {
        m_columns.emplace_back();
        m_columns.back().section = section;
    }
}

KudTableBlockEncoder::~KudTableBlockEncoder() = default;

void KudTableBlockEncoder::restrictTo(const QItemSelectionModel& selection)
{
    // A selection may have very many ranges, which mostly are as wide as the table. Rows of which
    // it tells no range (that of a table keeps few of them) are selected as wholes.
    std::map<std::pair<int, int>, Ranks> rowsOfColumns;
    Ranks whole = KudTableUtils::getSelectedRows(&selection);
    for (const QItemSelectionRange& range : selection.selection())
        rowsOfColumns[{range.left(), range.right()}].add(
            HbiIntervalIntSmall(range.top(), range.bottom()));
    for (const auto& [sections, selected] : rowsOfColumns)
        whole.subtract(selected);
    if (!whole.isEmpty())
        rowsOfColumns[{0, m_model.columnCount() - 1}].unite(whole);

    const Ranks rows = std::exchange(m_rows, Ranks());
    std::vector<Column> columns;
    for (Column& column : m_columns) {
        for (const auto& [sections, selected] : rowsOfColumns) {
            if (sections.first <= column.section && column.section <= sections.second)
                column.selectedRows.unite(selected.intersected(rows));
        }
        m_rows.unite(column.selectedRows);
        if (!column.selectedRows.isEmpty())
            columns.push_back(std::move(column));
    }
    m_columns = std::move(columns);
    for (Column& column : m_columns) {
        column.selected = column.selectedRows.intervals().begin();
        m_hasGaps |= column.selectedRows != m_rows;
    }
}

std::unique_ptr<QMimeData> KudTableBlockEncoder::encode()
{
    createColumns();
    appendHeader();
    std::array<int, ROW_BLOCK> rows;
    int count = 0;
    m_rows.forEachRank([&](int row) {
        rows[static_cast<std::size_t>(count++)] = row;
        if (count == ROW_BLOCK) {
            appendRows(rows.data(), std::exchange(count, 0));
            reserveRest();
        }
    });
    appendRows(rows.data(), count);
    m_html += "</table>";

    auto data = std::make_unique<QMimeData>();
    data->setText(toText(m_text));
    data->setHtml(toText(m_html));
    data->setData(QLatin1String(KudTableUtils::KELVANE_MIME_DATA),
                  QByteArray(m_own.data(), static_cast<int>(m_own.size())));
    return data;
}

/// After the first rows: the others will be about as long.
void KudTableBlockEncoder::reserveRest()
{
    if (std::exchange(m_isReserved, true))
        return;
    const auto blocks = static_cast<std::size_t>(m_rows.getCount() / ROW_BLOCK);
    for (std::string* form : {&m_text, &m_html, &m_own}) {
        const std::size_t wanted = form->size() * blocks;
        form->reserve(std::min(wanted + wanted / 8, KudTableBlockForm::MAX_BYTES));
    }
}

void KudTableBlockEncoder::createColumns()
{
    m_isOfTable = findTableColumns();
    for (Column& column : m_columns) {
        column.cells = m_isOfTable ? KudTableBlockColumn::create(*column.values, m_decimal)
                                   : KudTableBlockColumn::create(m_model, column.section);
    }
}

/// Whether the rows and columns of the model are those of a table's model in whatever order, judged
/// by the corners of the block.
bool KudTableBlockEncoder::findTableColumns()
{
    const QAbstractItemModel* model = &m_model;
    while (const auto* proxy = qobject_cast<const QAbstractProxyModel*>(model)) {
        m_proxies.push_back(proxy);
        model = proxy->sourceModel();
    }
    const auto* tableModel = qobject_cast<const KudTableModel*>(model);
    if (tableModel == nullptr || m_rows.isEmpty())
        return false;

    const KudADataTable& table = tableModel->getTable();
    for (Column& column : m_columns) {
        const QModelIndex first = toSource(m_rows.getMin(), column.section);
        const QModelIndex last = toSource(m_rows.getMax(), column.section);
        column.values = table.readValues(table.getVariableAt(first.column()));
        if (column.values == nullptr || first.column() != last.column() ||
            first.row() != toSource(m_rows.getMin(), m_columns.front().section).row())
            return false;
    }
    return true;
}

QModelIndex KudTableBlockEncoder::toSource(int row, int section) const
{
    QModelIndex index = m_model.index(row, section);
    for (const QAbstractProxyModel* proxy : m_proxies)
        index = proxy->mapToSource(index);
    return index;
}

void KudTableBlockEncoder::appendHeader()
{
    m_html += "<table><tr><td></td><th>";
    for (const Column& column : m_columns) {
        if (&column != &m_columns.front())
            m_html += "</th><th>";
        appendHtml(m_html, toUtf8(m_model.headerData(column.section, Qt::Horizontal)));
    }
    m_html += "</th></tr>";
}

void KudTableBlockEncoder::appendRows(const int* rows, int count)
{
    std::array<int, ROW_BLOCK> ranks;
    std::copy(rows, rows + count, ranks.begin());
    if (m_isOfTable && !m_proxies.empty() && !m_columns.empty()) {
        for (int i = 0; i < count; ++i)
            ranks[static_cast<std::size_t>(i)] = toSource(rows[i], m_columns.front().section).row();
    }
    for (Column& column : m_columns)
        column.cells->render(ranks.data(), count);
    for (int i = 0; i < count; ++i)
        appendRow(rows[i], i);
    checkSize();
}

void KudTableBlockEncoder::appendRow(int row, int i)
{
    if (m_hasGaps)
        findGaps(row);
    m_html += "<tr><th>";
    appendHtml(m_html, toUtf8(m_model.headerData(row, Qt::Vertical)));
    m_html += "</th><td>";
    for (const Column& column : m_columns) {
        if (&column != &m_columns.front()) {
            m_text += '\t';
            m_html += "</td><td>";
            m_own += '\t';
        }
        if (m_isFirstRow)
            appendDeclaration(column);
        if (!column.isSelected) {
            m_own += KudTableBlockForm::NO_CELL;
            continue;
        }
        const std::string_view text = column.cells->getTexts().at(i);
        if (column.cells->getTexts().isSpecial(i)) {
            appendQuoted(m_text, text);
            appendHtml(m_html, text);
        } else {
            m_text += text;
            m_html += text;
        }
        m_own += column.cells->getOwn().at(i);
    }
    m_text += '\n';
    m_html += "</td></tr>";
    m_own += '\n';
    m_isFirstRow = false;
}

void KudTableBlockEncoder::appendDeclaration(const Column& column)
{
    if (m_isOfTable)
        return KudTableBlockForm::appendDeclaration(m_own, *column.values);
    const QString name = m_model.headerData(column.section, Qt::Horizontal).toString();
    KudTableBlockForm::appendDeclaration(m_own, name, HbdVariableDetails(name, HbdEVarType::TEXT));
}

void KudTableBlockEncoder::findGaps(int row)
{
    for (Column& column : m_columns) {
        column.selected.seek(row);
        column.isSelected = !column.selected.isEnd() && column.selected->getMin() <= row;
    }
}

void KudTableBlockEncoder::checkSize() const
{
    constexpr std::size_t MEGABYTE = 1 << 20;
    if (std::max({m_text.size(), m_html.size(), m_own.size()}) > KudTableBlockForm::MAX_BYTES) {
        throw HbeUserError(tr("Copying to the clipboard: %1 rows and %2 columns need more than the "
                              "%3 MB that a clipboard takes. Export them instead.")
                               .arg(m_rows.getCount())
                               .arg(m_columns.size())
                               .arg(KudTableBlockForm::MAX_BYTES / MEGABYTE));
    }
}
