// Rows of delimited text: parsing any text ends, gives at least one field, and what is parsed and
// written again reads back as the same fields.
#include <util/extern/KueCsv.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    static const char separators[] = {',', ';', '\t', ' ', '"', 'a', '|', ':'};
    static const char quotes[] = {'"', '\'', 0, ','};
    const QChar separator = QLatin1Char(separators[data[0] % sizeof separators]);
    const QChar quote = QLatin1Char(quotes[data[0] / 8 % sizeof quotes]);
    const KueCsv codec(separator, (data[1] & 1) != 0, quote, QLatin1Char('.'));

    const QString row =
        QString::fromUtf8(reinterpret_cast<const char*>(data + 2), static_cast<int>(size - 2));
    const QStringList fields = codec.parseDelimitedRow(row);
    if (fields.isEmpty())
        std::abort();

    // Separators that a trimmed row or an unquoted field may lose do not come back.
    const bool plain = separator == QLatin1Char(',') || separator == QLatin1Char(';');
    if (!plain || quote != QLatin1Char('"'))
        return 0;
    // It is not read back where it begins the bytes.
    if (fields.first().startsWith(QChar(QChar::ByteOrderMark)))
        return 0;
    QList<KueFormatedVariant> cells;
    for (const QString& field : fields)
        cells.append({field});
    const KueCsv apart(separator, false, quote, QLatin1Char('.'));
    const QByteArray encoded = apart.encodeValues(cells);
    QStringList trimmed;
    for (const QString& field : fields)
        trimmed.append(field.trimmed());
    if (apart.parseDelimitedRow(QString::fromUtf8(encoded.constData(), encoded.size())) != trimmed)
        std::abort();
    return 0;
}
