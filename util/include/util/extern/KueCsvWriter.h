#pragma once

#include <util/KuExport.h>
#include <util/extern/KueCsv.h>

#include <array>
#include <vector>

/// Writes lines of delimited text, value by value, into one growing buffer of UTF-8: the hot path of
/// an export. What it appends for a value is what KueCsv::encodeValue returns, but nothing is
/// allocated once the buffer has its size. One thread at a time.
///
///     KueCsvWriter writer(codec);
///     for each row:
///         writer.appendText(name); writer.appendReal(x, HbbEFormat::E_DECIMAL, 2); writer.endLine();
///     file.write(writer.data(), writer.size()); writer.clear();
///
/// Each append after the first in its line puts the separator before the value.
class KELVANE_UTIL_EXPORT KueCsvWriter
{
public:
    explicit KueCsvWriter(const KueCsv& codec);

    void appendEmpty() { beginValue(); }
    void appendText(QStringView text);
    void appendUtf8(const char* text, qint64 size);
    void appendReal(double value, HbbEFormat::EValue format, int precision);
    void appendInteger(qint64 value);
    /// "1" or "0".
    void appendBool(bool value);
    /// Whatever the value holds; the slow way, for headers and mixed rows.
    void appendValue(const KueFormatedVariant& cell);

    /// Ends the line with a line feed; the next value begins a line.
    void endLine();

    /// Drops the bytes and keeps the memory. The next value begins a line.
    void clear();

    const char* data() const { return m_buffer.data(); }
    qint64 size() const { return static_cast<qint64>(m_size); }
    QByteArray toByteArray() const;

private:
    void beginValue();
    char* reserve(std::size_t bytes);
    void appendBytes(const char* bytes, std::size_t count);
    void quoteFrom(std::size_t begin);

    KueCsv m_codec;
    bool m_quoting;                    // the quote is not null
    std::array<bool, 256> m_special{}; // a byte that may call for quotes
    std::vector<char> m_buffer;        // its size is the capacity in use
    std::size_t m_size = 0;
    bool m_lineBegun = false;
};
