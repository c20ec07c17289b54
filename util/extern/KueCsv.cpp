#include <util/extern/KueCsv.h>

#include <util/extern/KueCsvWriter.h>

#include <basic/error/HbeProgrammingError.h>

KueCsv::KueCsv()
    : KueCsv(QLatin1Char(','), true, QLatin1Char('"'), QLatin1Char('.'))
{
}

KueCsv::KueCsv(const QChar& separator, bool collapse, const QChar& quote, const QChar& decimal)
    : m_separator(separator)
    , m_collapse(collapse)
    , m_quote(quote)
    , m_doubleQuote(2, quote)
    , m_decimal(decimal)
    , m_separatorBytes(QString(separator).toUtf8())
    , m_quoteBytes(QString(quote).toUtf8())
    , m_doubleQuoteBytes(m_doubleQuote.toUtf8())
    , m_decimalBytes(QString(decimal).toUtf8())
{
    if (separator.isNull())
        HBE_PROGRAMMING_ERROR("extern\\KueCsv", tr("Empty separator"));
}

QStringList KueCsv::parseDelimitedRow(QStringView row) const
{
    row = row.trimmed();
    if (row.isEmpty())
        return {QString()};

    QStringList fields;
    bool inQuotes = false;
    bool afterSeparator = false; // off at the start: an empty first field is never collapsed
    qsizetype begin = 0;
    for (qsizetype i = 0; i < row.size(); ++i) {
        if (inQuotes || row[i] != m_separator) {
            if (row[i] == m_quote && !m_quote.isNull())
                inQuotes = !inQuotes;
            afterSeparator = false;
            continue;
        }
        if (!m_collapse || !afterSeparator)
            fields.append(cleaned(row.mid(begin, i - begin)));
        begin = i + 1;
        afterSeparator = true;
    }
    fields.append(cleaned(row.mid(begin)));
    return fields;
}

QString KueCsv::cleaned(QStringView field) const
{
    field = field.trimmed();
    if (m_quote.isNull())
        return field.toString();
    if (!field.isEmpty() && field.front() == m_quote && field.back() == m_quote)
        field = field.size() == 1 ? QStringView() : field.mid(1, field.size() - 2).trimmed();
    QString text = field.isEmpty() ? QString() : field.toString();
    text.replace(m_doubleQuote, QString(m_quote));
    return text;
}

QByteArray KueCsv::encodeValue(const KueFormatedVariant& cell) const
{
    KueCsvWriter writer(*this);
    writer.appendValue(cell);
    return writer.toByteArray();
}

QByteArray KueCsv::encodeValues(const QList<KueFormatedVariant>& row) const
{
    KueCsvWriter writer(*this);
    for (const KueFormatedVariant& cell : row)
        writer.appendValue(cell);
    return writer.toByteArray();
}
