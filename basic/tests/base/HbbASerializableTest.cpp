#include <basic/base/HbbASerializable.h>
#include <basic/error/HbeError.h>

#include <QtCore/QBuffer>

namespace
{
// A part that is read as it comes: what it read before an error is in its members already.
class Part : public HbbASerializable
{
public:
    QString name;

protected:
    QList<int> _serializedVersions() const override { return {190501}; }
    int _currentSerializedVersion() const override { return 190501; }
    void _serialize(QDataStream& stream) const override { stream << name; }
    void _unserialize(QDataStream& stream, int) override { stream >> name; }
};

class Record : public HbbASerializable
{
public:
    QString title;
    QVector<double> values;
    Part part;
    int version = 200928;
    bool firstVersionValid = true;

    bool operator==(const Record& other) const
    {
        return title == other.title && values == other.values && part.name == other.part.name;
    }

protected:
    QList<int> _serializedVersions() const override { return {200101, 200928, version}; }
    int _currentSerializedVersion() const override { return version; }
    bool _hasValidFirstVersion() const override { return firstVersionValid; }

    void _serialize(QDataStream& stream) const override
    {
        stream << title;
        if (version == 200101)
            return;
        stream << values.size();
        for (const double value : values)
            stream << value;
        part.serialize(stream);
    }

    void _unserialize(QDataStream& stream, int streamVersion) override
    {
        stream >> title;
        if (title == QLatin1String("refused"))
            throw HbeError("A record may not be called that.");
        values.clear();
        if (streamVersion == 200101)
            return;
        const int count = readCount(stream, sizeof(double));
        for (int i = 0; i < count; ++i) {
            double value = 0;
            stream >> value;
            values.append(value);
        }
        part.unserialize(stream);
    }
};

Record sample(const QString& title)
{
    Record record;
    record.title = title;
    record.values = {1.5, -2.25, 1e300};
    record.part.name = QStringLiteral("inner ") + title;
    return record;
}

// The error of reading the bytes; the object must be as before.
QString errorOf(const QByteArray& bytes, bool firstVersionValid = true)
{
    Record record = sample("former");
    record.firstVersionValid = firstVersionValid;
    const Record former = record;
    try {
        record.fromByteArray(bytes);
    } catch (const HbeError& error) {
        EXPECT_TRUE(record == former) << error.what();
        return error.getMessage();
    }
    return QStringLiteral("no error");
}
} // namespace

TEST(HbbASerializable, recordsFollowOneAnotherInAStreamOfAnyFormat)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.setFloatingPointPrecision(QDataStream::SinglePrecision);
    out << 7;
    sample("one").serialize(out);
    sample("two").serialize(out);
    out << 8;

    QDataStream in(bytes);
    in.setByteOrder(QDataStream::LittleEndian);
    int before = 0, after = 0;
    Record one, two;
    in >> before;
    one.unserialize(in);
    two.unserialize(in);
    in >> after;
    EXPECT_TRUE(one == sample("one"));
    EXPECT_TRUE(two == sample("two"));
    EXPECT_EQ(before, 7);
    EXPECT_EQ(after, 8);
    EXPECT_TRUE(in.atEnd());
}

TEST(HbbASerializable, everyTruncationIsRefused)
{
    const QByteArray bytes = sample("new").toByteArray();
    EXPECT_EQ(errorOf(bytes), "no error");
    for (int length = 0; length < bytes.size(); ++length)
        EXPECT_EQ(errorOf(bytes.left(length)), "The stream is truncated.") << length;
}

TEST(HbbASerializable, everyDamagedByteIsRefused)
{
    const QByteArray bytes = sample("new").toByteArray();
    for (int at = 0; at < bytes.size(); ++at) {
        for (const int flip : {1, 128, 255}) {
            QByteArray damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            EXPECT_NE(errorOf(damaged), "no error") << at;
        }
    }
    EXPECT_EQ(errorOf(bytes + "x"), "The stream is damaged.");
    EXPECT_EQ(errorOf("PNG and so on"), "The stream holds something else.");
    EXPECT_EQ(errorOf(Part().toByteArray()), "The stream has the unknown version 190501.");
}

TEST(HbbASerializable, olderVersionsAreReadNewerAndUnknownOnesRefused)
{
    Record old = sample("old");
    old.version = 200101;
    Record record = sample("former");
    record.fromByteArray(old.toByteArray());
    EXPECT_EQ(record.title, "old");
    EXPECT_TRUE(record.values.isEmpty());

    Record other = sample("new");
    other.version = 210001;
    EXPECT_EQ(errorOf(other.toByteArray()),
              "The stream has version 210001, newer than the newest known one, 200928.");
    other.version = 200102;
    EXPECT_EQ(errorOf(other.toByteArray()), "The stream has the unknown version 200102.");
}

TEST(HbbASerializable, aClassThatRefusesHalfWayIsPutBack)
{
    EXPECT_EQ(errorOf(sample("refused").toByteArray()), "A record may not be called that.");
}

TEST(HbbASerializable, aFirstVersionWithoutHeaderIsRead)
{
    QByteArray bare;
    QDataStream out(&bare, QIODevice::WriteOnly);
    out << QStringLiteral("bare");
    EXPECT_EQ(errorOf(bare), "The stream holds something else.");

    Record record = sample("former");
    record.firstVersionValid = false;
    record.fromByteArray(bare);
    EXPECT_EQ(record.title, "bare");
    record.fromByteArray(sample("with header").toByteArray());
    EXPECT_TRUE(record == sample("with header"));
    EXPECT_EQ(errorOf(bare.left(6), false), "The stream is truncated.");
    EXPECT_EQ(errorOf(bare + "x", false), "The stream is damaged.");
}

TEST(HbbASerializable, anUnwritableStreamIsAnError)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    EXPECT_THROW(sample("x").serialize(stream), HbeError);
}
