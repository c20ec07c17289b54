#pragma once

#include <QtCore/QByteArray>

#include <algorithm>
#include <cstring>

/// A tar stream made by hand, right or wrong: each member has a right header, until its fields are
/// written over.
///
///     TarBuilder().file("a.txt", "text").with(TarBuilder::SIZE, "17").end().bytes()
class TarBuilder
{
public:
    static constexpr int BLOCK = 512;
    static constexpr int TIME = 1000000001; ///< of each member

    /// A place in a header.
    struct Field {
        int offset;
        int size;
    };
    static constexpr Field NAME{0, 100}, MODE{100, 8}, SIZE{124, 12}, MTIME{136, 12},
        CHECKSUM{148, 8}, TYPE{156, 1}, LINK{157, 100}, MAGIC{257, 8}, PREFIX{345, 155};

    /// A header, and the data padded to blocks.
    TarBuilder& member(char type, const QByteArray& name, const QByteArray& data = {})
    {
        m_header = m_bytes.size();
        m_bytes += QByteArray(BLOCK, '\0');
        write(NAME, name);
        write(MODE, type == '5' ? "0000755" : "0000644");
        write({108, 8}, "0000000");
        write({116, 8}, "0000000");
        write(SIZE, QByteArray::number(data.size(), 8).rightJustified(11, '0'));
        write(MTIME, QByteArray::number(TIME, 8));
        write(TYPE, QByteArray(1, type));
        write(MAGIC, QByteArray("ustar\00000", 8));
        correctChecksum();
        return raw(data).pad();
    }
    TarBuilder& file(const QByteArray& name, const QByteArray& data = {})
    {
        return member('0', name, data);
    }
    TarBuilder& directory(const QByteArray& name) { return member('5', name); }
    TarBuilder& link(char type, const QByteArray& name, const QByteArray& target)
    {
        return member(type, name).with(LINK, target);
    }
    /// A pax record before the next member, its data as they stand.
    TarBuilder& pax(const QByteArray& data, char type = 'x')
    {
        return member(type, "./PaxHeaders.1/x", data);
    }
    TarBuilder& paxPath(const QByteArray& path) { return pax(paxEntry("path", path)); }
    /// A GNU long name before the next member.
    TarBuilder& gnuName(const QByteArray& name, char type = 'L')
    {
        return member(type, "././@LongLink", name + '\0').with(MAGIC, "ustar  ");
    }

    /// Writes over a field of the last header, filled up with NUL; its checksum is right again
    /// unless that is the field.
    TarBuilder& with(Field field, const QByteArray& value)
    {
        write(field, value);
        if (field.offset != CHECKSUM.offset)
            correctChecksum();
        return *this;
    }

    TarBuilder& raw(const QByteArray& bytes)
    {
        m_bytes += bytes;
        return *this;
    }
    /// NUL up to a whole block.
    TarBuilder& pad() { return raw(QByteArray((BLOCK - m_bytes.size() % BLOCK) % BLOCK, '\0')); }
    TarBuilder& zeroBlocks(int count) { return raw(QByteArray(count * BLOCK, '\0')); }
    TarBuilder& end() { return zeroBlocks(2); }
    TarBuilder& truncate(int size)
    {
        m_bytes.truncate(size);
        return *this;
    }

    const QByteArray& bytes() const { return m_bytes; }

    /// "%1 key=value\n" with the length that it has.
    static QByteArray paxEntry(const QByteArray& key, const QByteArray& value)
    {
        const QByteArray text = ' ' + key + '=' + value + '\n';
        int length = text.size();
        while (length != text.size() + QByteArray::number(length).size())
            length = text.size() + QByteArray::number(length).size();
        return QByteArray::number(length) + text;
    }
    /// A number of 12 bytes: the first byte, three more and the 64 bits.
    static QByteArray base256(quint64 value, char first = '\x80', char fill = '\0')
    {
        QByteArray bytes(12, fill);
        bytes[0] = first;
        for (int i = 0; i < 8; ++i)
            bytes[11 - i] = static_cast<char>(value >> (8 * i));
        return bytes;
    }

    /// A Zstandard frame that holds the bytes as they are, without a checksum.
    static QByteArray toFrame(const QByteArray& bytes)
    {
        constexpr int LARGEST = 1 << 17;
        QByteArray frame("\x28\xb5\x2f\xfd\x00\x38", 6); // a window of LARGEST
        int begin = 0;
        do {
            const QByteArray block = bytes.mid(begin, LARGEST);
            begin += LARGEST;
            const bool isLast = begin >= bytes.size();
            frame += blockHeader(block.size(), 0, isLast) + block;
        } while (begin < bytes.size());
        return frame;
    }
    /// So many mebibytes of NUL as a frame.
    static QByteArray zeroFrame(int mebibytes)
    {
        QByteArray frame("\x28\xb5\x2f\xfd\x00\x38", 6);
        for (int i = 8 * mebibytes; i-- > 0;)
            frame += blockHeader(1 << 17, 1, i == 0) + '\0';
        return frame;
    }

private:
    static QByteArray blockHeader(int size, int type, bool isLast)
    {
        const int bits = size << 3 | type << 1 | (isLast ? 1 : 0);
        return {QByteArray(1, char(bits)) + char(bits >> 8) + char(bits >> 16)};
    }
    void write(Field field, const QByteArray& value)
    {
        char* place = m_bytes.data() + m_header + field.offset;
        std::fill_n(place, field.size, '\0');
        std::memcpy(place, value.constData(),
                    static_cast<std::size_t>(std::min(field.size, value.size())));
    }
    void correctChecksum()
    {
        write(CHECKSUM, QByteArray(8, ' '));
        int sum = 0;
        for (int i = 0; i < BLOCK; ++i)
            sum += static_cast<unsigned char>(m_bytes.at(m_header + i));
        write(CHECKSUM, QByteArray::number(sum, 8).rightJustified(6, '0') + QByteArray("\0 ", 2));
    }

    QByteArray m_bytes;
    int m_header = 0; // where the last one begins
};
