#include <util/extern/KueTableReader.h>

#include "KueTableCoordinates.h"
#include "KueTableRows.h"
#include "KueTableSniffer.h"
#include "KueTableSource.h"

#include <basic/base/HbbContainer.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QHash>
#include <QtCore/QSet>

namespace
{
using Request = KueTableColumn::Request;

constexpr int SHOWN_NAMES = 20; // that a message lists

QString translate(const char* text)
{
    return QCoreApplication::translate("KueTableReader", text);
}

KueTableOptions::Separator toSeparator(char separator)
{
    switch (separator) {
    case ';':
        return KueTableOptions::Separator::SEMICOLON;
    case '\t':
        return KueTableOptions::Separator::TAB;
    case KueTableTokenizer::SPACE:
        return KueTableOptions::Separator::SPACE;
    default:
        return KueTableOptions::Separator::COMMA;
    }
}

/// One reading of one file.
class Reading
{
public:
    Reading(const QString& path, const KueTableOptions& options);

    KueTableResult run(const KueTableReader::Progress& progress);

private:
    void nameColumns(bool isFinal);
    void createColumns();
    void request(const QString& name, Request request);
    int indexOf(const QString& name) const;
    void chooseCoordinates();
    void buildTable();
    void describe();
    void explainWidenings(const KueTableRows& rows);

    const KueTableOptions& m_options;
    KueTableMissing m_missing;
    KueTableSource m_source;
    KueTableLayout m_layout;
    KueTableRules m_rules;
    QStringList m_names;
    std::vector<Request> m_requests;
    std::vector<KueTableColumn> m_columns;
    KueTableCoordinates m_coordinates;
    KueTableResult m_result;
};

KueTableRules makeRules(const KueTableLayout& layout, const KueTableOptions& options,
                        const KueTableSource& source, const KueTableMissing& missing)
{
    KueTableRules rules(missing);
    rules.style.decimal = layout.decimal;
    rules.unquotedDecimal = layout.decimal == layout.separator ? '\0' : layout.decimal;
    rules.maxCategories = options.maxCategories;
    rules.maxCategoryShare = options.maxCategoryShare;
    rules.source = &source;
    if (layout.form == KueTableResult::Form::GEO_EAS) {
        rules.undefinedAbove = 1e30;
        rules.style.leadingZeros = true; // it holds numbers by its form
    }
    return rules;
}

Reading::Reading(const QString& path, const KueTableOptions& options)
    : m_options(options)
    , m_missing(options.missingTexts)
    , m_source(path, options.blockSize)
    , m_layout(KueTableSniffer(m_source, options, m_missing).sniff())
    , m_rules(makeRules(m_layout, options, m_source, m_missing))
{
}

KueTableResult Reading::run(const KueTableReader::Progress& progress)
{
    nameColumns(false);
    createColumns();
    KueTableRows rows(m_source, m_layout, m_rules, m_options, m_names, m_columns);
    rows.read(progress);
    nameColumns(true);
    chooseCoordinates();
    describe();
    explainWidenings(rows);
    if (rows.getEmptyLines() != 0)
        m_result.notes.append(
            translate("%1 empty lines were passed over.").arg(rows.getEmptyLines()));
    m_result.passes = rows.getPasses();
    buildTable();
    return std::move(m_result);
}

/// Names that are unique and not empty. The encoding is known for certain at the end only.
void Reading::nameColumns(bool isFinal)
{
    QStringList given;
    for (const std::string& name : m_layout.names)
        given.append(m_source.decode(name.data(), name.size()).simplified());
    const QSet<QString> all(given.cbegin(), given.cend());
    QSet<QString> taken;
    QHash<QString, QString> lastOfName; // counting goes on from there
    const auto isTaken = [&](const QString& name) { return taken.contains(name); };
    const auto isTakenOrGiven = [&](const QString& name) {
        return taken.contains(name) || all.contains(name);
    };
    m_names.clear();
    for (int i = 0; i < given.size(); ++i) {
        QString name = given.at(i);
        if (name.isEmpty()) {
            name = HbbContainer::getUniqueName(QLatin1Char('V') + QString::number(i + 1),
                                               isTakenOrGiven);
            if (isFinal && m_layout.hasHeader)
                m_result.notes.append(
                    translate("Column %1 has no name; it is called '%2'.").arg(i + 1).arg(name));
        } else if (isTaken(name)) {
            QString& last = lastOfName[name];
            last = HbbContainer::getUniqueName(last.isEmpty() ? name : last, isTakenOrGiven);
            if (isFinal)
                m_result.warnings.append(
                    translate("More than one column has the name '%1'; column %2 is called '%3'.")
                        .arg(name)
                        .arg(i + 1)
                        .arg(last));
            name = last;
        }
        taken.insert(name);
        m_names.append(name);
    }
}

int Reading::indexOf(const QString& name) const
{
    const int index = m_names.indexOf(name);
    if (index >= 0)
        return index;
    QStringList shown = m_names.mid(0, SHOWN_NAMES);
    if (shown.size() < m_names.size())
        shown.append(QChar(0x2026));
    throw HbeUserError(translate("'%1', line %2: there is no column '%3'. The columns are: %4")
                           .arg(m_source.getPath())
                           .arg(std::max<qint64>(m_layout.firstLine - 1, 1))
                           .arg(name, shown.join(QLatin1String(", "))));
}

void Reading::request(const QString& name, Request request)
{
    m_requests[static_cast<std::size_t>(indexOf(name))] = request;
}

void Reading::createColumns()
{
    const std::size_t count = m_layout.names.size();
    m_requests.assign(count, Request::ANY);
    for (const QString& name : m_options.textColumns)
        request(name, Request::TEXT);
    for (const QString& name : m_options.categoryColumns)
        request(name, Request::CATEGORY);
    for (const QString& name : {m_options.xColumn, m_options.yColumn, m_options.zColumn}) {
        if (!name.isEmpty())
            request(name, Request::NUMBER);
    }
    for (std::size_t i = 0; i < count; ++i)
        m_columns.emplace_back(m_requests[i], m_layout.quotedTexts[i]);

    // What will be guessed to be a coordinate may be rounded, as a coordinate that is named.
    const KueTableCoordinates likely = KueTableCoordinates::guess(
        m_names, [this](int i) { return m_requests[static_cast<std::size_t>(i)] == Request::ANY; });
    for (const int i : {likely.x, likely.y, likely.z}) {
        if (i >= 0 && m_options.guessCoordinates)
            m_columns[static_cast<std::size_t>(i)].setRounding(true);
    }
}

void Reading::chooseCoordinates()
{
    const auto find = [this](const QString& name) {
        return name.isEmpty() ? -1 : m_names.indexOf(name);
    };
    m_coordinates = {find(m_options.xColumn), find(m_options.yColumn), find(m_options.zColumn)};
    const bool isNamed = m_coordinates.x >= 0 || m_coordinates.y >= 0 || m_coordinates.z >= 0;
    if (!isNamed && m_options.guessCoordinates) {
        m_coordinates = KueTableCoordinates::guess(
            m_names, [this](int i) { return m_columns[static_cast<std::size_t>(i)].isNumeric(); });
        m_result.coordinatesGuessed = m_coordinates.x >= 0;
    }
    m_result.xColumn = m_names.value(m_coordinates.x);
    m_result.yColumn = m_names.value(m_coordinates.y);
    m_result.zColumn = m_names.value(m_coordinates.z);
    if (!m_result.coordinatesGuessed)
        return;
    QStringList columns = {m_result.xColumn, m_result.yColumn};
    if (m_coordinates.z >= 0)
        columns.append(m_result.zColumn);
    m_result.notes.append(
        translate("The columns '%1' are taken for the coordinates, by their names.")
            .arg(columns.join(QLatin1String("', '"))));
}

void Reading::describe()
{
    m_result.form = m_layout.form;
    m_result.separator = toSeparator(m_layout.separator);
    m_result.decimal =
        m_layout.decimal == ',' ? KueTableOptions::Decimal::COMMA : KueTableOptions::Decimal::DOT;
    m_result.encoding = m_source.getEncoding();
    m_result.hasHeader = m_layout.hasHeader;
    m_result.title = m_source.decode(m_layout.title.data(), m_layout.title.size()).simplified();
    if (m_result.encoding == KueTableResult::Encoding::LATIN_1)
        m_result.notes.append(translate("The file is not UTF-8; it is read as Latin-1."));
    if (!m_layout.hasHeader)
        m_result.warnings.append(
            translate("The first line holds numbers only: it is read as data, and the columns are "
                      "called '%1' to '%2'.")
                .arg(m_names.first(), m_names.last()));
    else if (m_layout.hasNumberInHeader)
        m_result.warnings.append(translate(
            "The first line is read as the names of the columns, though it holds numbers."));
}

void Reading::explainWidenings(const KueTableRows& rows)
{
    for (const KueTableRows::Widening& widening : rows.getWidenings()) {
        const KueTableColumn& column = m_columns[widening.column];
        const QString name = m_names.at(static_cast<int>(widening.column));
        if (column.hasLostDigits())
            m_result.warnings.append(
                translate(
                    "Column '%1' is read as text: '%2' in line %3 has more digits than a real "
                    "number keeps.")
                    .arg(name, widening.text)
                    .arg(widening.line));
        else if (column.hasNumbers())
            m_result.notes.append(
                translate("Column '%1' is read as text: '%2' in line %3 is not a number.")
                    .arg(name, widening.text)
                    .arg(widening.line));
    }
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        if (!m_columns[i].isNumeric() && m_columns[i].hasLargeIntegers())
            m_result.notes.append(
                translate("Column '%1' is read as text: it holds whole numbers beyond 64 bits.")
                    .arg(m_names.at(static_cast<int>(i))));
        if (m_columns[i].isNumeric() && m_columns[i].hasLostDigits())
            m_result.warnings.append(
                translate("Column '%1': numbers with more digits than a real number keeps are "
                          "rounded.")
                    .arg(m_names.at(static_cast<int>(i))));
    }
}

void Reading::buildTable()
{
    for (int i = 0; i < m_names.size(); ++i) {
        const HbdEVarRole role = i == m_coordinates.x   ? HbdEVarRole::X_COORDINATE
                                 : i == m_coordinates.y ? HbdEVarRole::Y_COORDINATE
                                 : i == m_coordinates.z ? HbdEVarRole::Z_COORDINATE
                                                        : HbdEVarRole::NONE;
        m_result.table.addVariable(
            m_columns[static_cast<std::size_t>(i)].build(m_names.at(i), role, m_rules));
    }
}
} // namespace

KueTableReader::KueTableReader(const KueTableOptions& options)
    : m_options(options)
{
}

KueTableResult KueTableReader::read(const QString& path) const
{
    m_options.validate();
    return Reading(path, m_options).run(m_progress);
}
