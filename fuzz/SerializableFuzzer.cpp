// Reading a binary record never crashes, leaves the object as it was on an error, and gives on
// success an object that writes itself and reads itself back.
//
// The first byte chooses: even, the rest is the record; odd, the rest is the payload of a record
// whose header is right, which the checksum would hardly ever let through otherwise.
#include "FuzzTarget.h"

#include <basic/base/HbbASerializable.h>
#include <basic/error/HbeError.h>

#include <vector>

namespace
{
class RawRecord : public HbbASerializable
{
public:
    QByteArray bytes;

protected:
    QList<int> _serializedVersions() const override { return {200928}; }
    int _currentSerializedVersion() const override { return 200928; }
    void _serialize(QDataStream& stream) const override
    {
        stream.writeRawData(bytes.constData(), bytes.size());
    }
    void _unserialize(QDataStream&, int) override {}
};

class Record : public HbbASerializable
{
public:
    QString name;
    QList<QString> texts;
    std::vector<double> values;
    std::vector<Record> parts;

protected:
    QList<int> _serializedVersions() const override { return {200101, 200928}; }
    int _currentSerializedVersion() const override { return 200928; }
    bool _hasValidFirstVersion() const override { return false; }

    void _serialize(QDataStream& stream) const override
    {
        stream << name << static_cast<qint32>(texts.size());
        for (const QString& text : texts)
            stream << text;
        stream << static_cast<qint32>(values.size());
        for (const double value : values)
            stream << value;
        stream << static_cast<qint32>(parts.size());
        for (const Record& part : parts)
            part.serialize(stream);
    }

    void _unserialize(QDataStream& stream, int version) override
    {
        stream >> name;
        texts.clear();
        values.clear();
        parts.clear();
        for (int i = readCount(stream, 4); i > 0; --i) {
            texts.append(QString());
            stream >> texts.last();
        }
        values.resize(static_cast<std::size_t>(readCount(stream, sizeof(double))));
        for (double& value : values)
            stream >> value;
        if (version == 200101)
            return;
        for (int i = readCount(stream, 16); i > 0; --i) {
            parts.emplace_back();
            parts.back().unserialize(stream);
        }
    }
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0 || size > 65536)
        return 0;
    QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size) - 1);
    if ((data[0] & 1) != 0) {
        RawRecord raw;
        raw.bytes = bytes;
        bytes = raw.toByteArray();
    }

    Record record;
    record.name = QStringLiteral("former");
    record.values = {1, 2};
    const QByteArray former = record.toByteArray();
    try {
        record.fromByteArray(bytes);
    } catch (const HbeError&) {
        require(record.toByteArray() == former);
        return 0;
    }
    const QByteArray written = record.toByteArray();
    Record copy;
    copy.fromByteArray(written);
    require(copy.toByteArray() == written);
    return 0;
}
