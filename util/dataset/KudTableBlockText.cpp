#include "KudTableBlockData.h"

// Blocks from plain text.

/// Takes a text apart. What was quoted is rid of its quotes in place, for it only becomes shorter.
class KudTableBlock::TextReader
{
public:
    explicit TextReader(const QString& text)
        : m_data(std::make_shared<Data>())
    {
        m_data->text = text;
        m_text = m_data->text.data(); // a copy of its own
        m_size = text.size();
    }

    std::shared_ptr<const Data> read()
    {
        int at = m_size > 0 && m_text[0] == QChar::ByteOrderMark ? 1 : 0;
        while (at < m_size) {
            at = readCell(at);
            while (at < m_size && m_text[at] == QLatin1Char('\t'))
                at = readCell(at + 1);
            if (at < m_size)
                at += m_text[at] == QLatin1Char('\r') && at + 1 < m_size &&
                              m_text[at + 1] == QLatin1Char('\n')
                          ? 2
                          : 1;
            endRow();
        }
        return m_data;
    }

private:
    static bool isEnd(QChar character)
    {
        return character == QLatin1Char('\t') || character == QLatin1Char('\n') ||
               character == QLatin1Char('\r');
    }

    int findEnd(int at) const
    {
        while (at < m_size && !isEnd(m_text[at]))
            ++at;
        return at;
    }

    /// Returns where the cell ends.
    int readCell(int begin)
    {
        if (begin < m_size && m_text[begin] == QLatin1Char('"')) {
            const int quote = findClosingQuote(begin + 1);
            if (quote < m_size)
                return readQuoted(begin + 1, quote);
        }
        const int end = findEnd(begin);
        addCell(begin, end);
        return end;
    }

    /// The first quote that is not doubled, else the end of the text. That happens once: then all
    /// quotes behind come in pairs, and a cell that begins with pairs ends with one of them.
    int findClosingQuote(int at) const
    {
        const QLatin1Char quote('"');
        for (; at < m_size; ++at) {
            if (m_text[at] != quote)
                continue;
            if (at + 1 == m_size || m_text[at + 1] != quote)
                return at;
            ++at;
        }
        return m_size;
    }

    int readQuoted(int begin, int closingQuote)
    {
        int out = begin;
        for (int at = begin; at < closingQuote; ++at) {
            m_text[out++] = m_text[at];
            if (m_text[at] == QLatin1Char('"'))
                ++at;
        }
        const int end = findEnd(closingQuote + 1); // what follows the quote belongs to it
        std::copy(m_text + closingQuote + 1, m_text + end, m_text + out);
        addCell(begin, out + end - closingQuote - 1);
        return end;
    }

    void addCell(int begin, int end)
    {
        Data::checkCount(static_cast<qint64>(m_data->cells.size()) + 1);
        m_data->cells.push_back({begin, end - begin});
    }

    void endRow()
    {
        const int end = static_cast<int>(m_data->cells.size());
        const int begin = m_data->rowEnds.empty() ? 0 : m_data->rowEnds.back();
        m_data->rowEnds.push_back(end);
        m_data->columnCount = std::max(m_data->columnCount, end - begin);
        ++m_data->rowCount;
    }

    std::shared_ptr<Data> m_data;
    QChar* m_text;
    int m_size;
};

KudTableBlock KudTableBlock::fromText(const QString& text)
{
    KudTableBlock block;
    block.m_data = TextReader(text).read();
    return block;
}
