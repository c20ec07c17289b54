#include <util/calc/KucExportDataEncodingCsv.h>

#include <util/calc/KucExportBlock.h>

#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

namespace
{
constexpr qint64 WRITE_SIZE = 1 << 20; // bytes that go to the file at a time

KueCsv createCodec(const KueCsvSeparator& separator, const KueDecimalSeparator& decimal)
{
    const QChar point = decimal == KueDecimalSeparator::COMMA ? QLatin1Char(',') : QLatin1Char('.');
    return KueCsv(separator.getChar(), false, QLatin1Char('"'), point);
}

/// The undefined text, or the value in the form of its column: the bytes of the variant that
/// KucExportColumn::read gives.
void appendCell(KueCsvWriter& writer, const KucExportColumn& column, int place,
                const QString& undefined)
{
    switch (column.getKind()) {
    case KucExportColumn::Kind::REAL: {
        const double value = column.getReal(place);
        if (HbbGlobal::isUndefined(value))
            return writer.appendText(undefined);
        return writer.appendReal(value, column.getFormat().toEnum(), column.getPrecision());
    }
    case KucExportColumn::Kind::INTEGER: {
        const qint64 value = column.getInteger(place);
        return HbbGlobal::isUndefined(value) ? writer.appendText(undefined)
                                             : writer.appendInteger(value);
    }
    case KucExportColumn::Kind::TEXT: {
        const QString& text = column.getText(place);
        return writer.appendText(text.isNull() ? undefined : text);
    }
    case KucExportColumn::Kind::CATEGORY: {
        const QByteArray& label = column.getLabel(place).utf8;
        return writer.appendUtf8(label.constData(), label.size());
    }
    case KucExportColumn::Kind::OTHER:
        break;
    }
    QVariant value(undefined);
    column.read(place, value);
    writer.appendValue({value, column.getFormat(), column.getPrecision()});
}
} // namespace

KucExportDataEncodingCsv::KucExportDataEncodingCsv(const QString& path,
                                                   const KueCsvSeparator& separator,
                                                   const KueDecimalSeparator& decimal)
    : KucAExportDataEncoding(path)
    , m_file(path)
    , m_writer(createCodec(separator, decimal))
{
}

KucExportDataEncodingCsv::~KucExportDataEncodingCsv()
{
    KucExportDataEncodingCsv::abandonFile();
}

void KucExportDataEncodingCsv::openFile()
{
    abandonFile();
    // Lines are gathered here: a second buffer would only copy them once more.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        throw HbeUserError(
            tr("Cannot open the file '%1' : %2").arg(getPath(), m_file.errorString()));
    }
    m_writer.clear();
}

void KucExportDataEncodingCsv::closeFile()
{
    if (!m_file.isOpen())
        return;
    flush();
    m_file.close();
}

void KucExportDataEncodingCsv::abandonFile()
{
    if (!m_file.isOpen())
        return;
    m_file.write(m_writer.data(), m_writer.size());
    m_writer.clear();
    m_file.close();
}

void KucExportDataEncodingCsv::writeLine(const QList<KueFormatedVariant>& row)
{
    checkOpen();
    for (const KueFormatedVariant& cell : row)
        m_writer.appendValue(cell);
    endLine();
}

void KucExportDataEncodingCsv::writeBlock(const KucExportBlock& block)
{
    checkOpen();
    const KucExportBlock::Columns& columns = block.getColumns();
    for (int row = 0; row < block.getRowCount(); ++row) {
        block.beginRow();
        for (int i = 0; i < block.getIndexCount(); ++i)
            m_writer.appendInteger(block.getIndex(row, i));
        for (const KucExportColumn& column : columns)
            appendCell(m_writer, column, block.getPlace(row, column), block.getUndefined());
        endLine();
        block.endRow();
    }
}

void KucExportDataEncodingCsv::checkOpen() const
{
    if (!m_file.isOpen())
        HBE_PROGRAMMING_ERROR("calc\\KucExportDataEncodingCsv", tr("File is not open"));
}

void KucExportDataEncodingCsv::endLine()
{
    m_writer.endLine();
    if (m_writer.size() >= WRITE_SIZE)
        flush();
}

void KucExportDataEncodingCsv::flush()
{
    const qint64 size = m_writer.size();
    const bool written = m_file.write(m_writer.data(), size) == size;
    m_writer.clear(); // what could not be written now is not written again later
    if (!written) {
        throw HbeUserError(
            tr("Cannot write the file '%1' : %2").arg(getPath(), m_file.errorString()));
    }
}
