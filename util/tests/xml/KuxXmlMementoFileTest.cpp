#include <util/xml/KuxXmlMementoFile.h>

#include "CapturedLog.h"
#include "ErrorText.h"

#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>
#include <util/xml/KuxXml.h>

#include <QtCore/QLine>
#include <QtCore/QRect>
#include <QtCore/QTextStream>
#include <QtGui/QColor>
#include <QtXml/QDomDocument>

namespace
{
using namespace KuxXmlMementoFile;

const QString RELATION = "Thing";

class KuxXmlMementoFileTest : public testing::Test
{
protected:
    CapturedLog m_log;
    QStringList& m_warnings = m_log.texts;
    QTemporaryDir m_folder;
    QDir m_directory{m_folder.path()};
};

KuuMemento mementoWith(const QVariant& value, const QString& key = QStringLiteral("f"))
{
    KuuMemento memento(KuuId::generate(RELATION));
    memento.setField(key, value);
    return memento;
}

QByteArray savedByDom(const KuuMemento& memento)
{
    QByteArray bytes;
    QTextStream stream(&bytes);
    stream.setCodec("UTF-8");
    mementoToXml(memento).save(stream, 4, QDomNode::EncodingFromTextStream);
    stream.flush();
    return bytes;
}

KuuMemento readByDom(const QByteArray& bytes)
{
    QDomDocument document;
    KuxXml::readXml(bytes, "bytes", document);
    return xmlToMemento(document);
}

QVariant reread(const QVariant& value)
{
    const QByteArray bytes = mementoToBytes(mementoWith(value));
    return bytesToMemento(bytes, "bytes").getField("f");
}

// Random mementos from everything that has ever been hard to write or to read.
class Generator
{
public:
    explicit Generator(unsigned seed)
        : m_random(seed)
    {
    }

    KuuMemento memento(int depth)
    {
        KuuMemento result(KuuId::generate(key()));
        result.setVersion(below(300) - 5);
        result.setFields(map(depth));
        for (int i = below(depth + 1); i > 0; --i)
            result.setAssociation(below(10) == 0 ? KuuMemento() : memento(depth - 1), false);
        return result;
    }

private:
    int below(int n) { return int(m_random() % unsigned(n)); }

    QString text()
    {
        static const QStringList PARTS =
            QString::fromUtf8(
                "abc|<|>|&|]]>|]]|\r|\n|\t| |\"|'|é|€|\xF0\x9F\x98\x80|\u00A0|\x01|\uFEFF|"
                "\xEF\xBF\xBF|&amp;|<![CDATA[|&#13;|"
                "a long stretch of plain text, longer than a block")
                .split('|');
        QString result;
        for (int i = below(5); i > 0; --i)
            result += PARTS[below(PARTS.size())];
        return below(20) == 0 ? result + QChar(0xD801) : result;
    }

    QString key()
    {
        static const QStringList KEYS =
            QString::fromUtf8("name|x|Cu total|1st|a:b|_x0020_|_x0041|été|id|fields|a<b>|xml|-|"
                              "z\xF0\x9F\x98\x80|a\x01|\xE6\x98\x8E")
                .split('|');
        const QString base = KEYS[below(KEYS.size())];
        return below(3) == 0 ? base + KEYS[below(KEYS.size())] : base;
    }

    QVariantMap map(int depth)
    {
        QVariantMap result;
        for (int i = below(6); i > 0; --i)
            result.insert(key(), value(depth - 1));
        return result;
    }

    QVariant value(int depth)
    {
        const QVariant values[] = {QVariant(),
                                   below(1000) / 7.0,
                                   below(2) == 0,
                                   QStringList{text(), text()},
                                   QRectF(below(100) / 3.0, -1e20, 0, 1e-20),
                                   QColor::fromHsv(below(360), below(256), below(256), below(256)),
                                   QLine(below(9), -below(9), 3, 4),
                                   QPoint(),
                                   QSizeF(0.1, 2)};
        const int kind = below(depth > 0 ? 14 : 11);
        if (kind < int(std::size(values)))
            return values[kind];
        if (kind == 11)
            return map(depth);
        if (kind == 12)
            return QVariantList{value(depth - 1), QVariant(), value(depth - 1)};
        return text();
    }

    std::mt19937 m_random;
};

TEST_F(KuxXmlMementoFileTest, StreamAndDomAgreeOnRandomMementos)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        const KuuMemento memento = Generator(seed).memento(3);
        const QByteArray bytes = mementoToBytes(memento);
        ASSERT_EQ(bytes, savedByDom(memento));
        const KuuMemento back = bytesToMemento(bytes, "bytes");
        ASSERT_TRUE(back == readByDom(bytes)) << bytes.toStdString();
        // What came back is what is written again: nothing drifts.
        ASSERT_EQ(mementoToBytes(back), bytes);
        ASSERT_EQ(back.getId(), memento.getId());
        ASSERT_EQ(back.getFields().keys(), memento.getFields().keys());
    }
}

TEST_F(KuxXmlMementoFileTest, TheFormIsTheDocumentedOne)
{
    KuuMemento memento(KuuId(RELATION, "6f0f9b52-9a5b-4a1e-9c3f-0a4f6b1c2d3e"));
    memento.setVersion(102);
    memento.setField("a", 5);
    memento.setField("b", QVariantList{true, QVariant(), "x<y"});
    memento.setField("c d", QPointF(0.123456789, 2));
    memento.setField(QString(), "not written");
    memento.setAssociation(KuuMemento(KuuId("Part", "none")), true);
    memento.setAssociation(KuuMemento(KuuId("Part", memento.getId().getUuid())), false);
    EXPECT_EQ(mementoToBytes(memento), QByteArray(R"(<?xml version="1.0" encoding="UTF-8"?>
<Thing>
    <id>6f0f9b52-9a5b-4a1e-9c3f-0a4f6b1c2d3e</id>
    <version>102</version>
    <fields type="QMap">
        <a>5</a>
        <b type="QVariantList">
            <QVariant>true</QVariant>
            <QVariant/>
            <QVariant>x&lt;y</QVariant>
        </b>
        <c_x0020_d type="QPointF">
            <x>0.123457</x>
            <y>2</y>
        </c_x0020_d>
    </fields>
    <Part>
        <id>6f0f9b52-9a5b-4a1e-9c3f-0a4f6b1c2d3e</id>
        <version>100</version>
        <fields type="QMap"/>
    </Part>
</Thing>
)"));
}

TEST_F(KuxXmlMementoFileTest, ValuesComeBackByTheirRules)
{
    const std::pair<QVariant, QVariant> rows[] = {
        {5, "5"},
        {0.1 + 0.2, "0.30000000000000004"},
        {-0.0, "-0"},
        {false, "false"},
        {QByteArray("bytes"), "bytes"},
        {QVariant(), ""},
        {QVariantList{QVariant(), 1}, QVariantList{"", "1"}},
        {QVariantMap{{"k y", 1}, {"m", QVariantMap()}},
         QVariantMap{{"k y", "1"}, {"m", QVariantMap()}}},
        {QRectF(0.123456789, 0, 1, 1), QRectF(0.123457, 0, 1, 1)}};
    QVector<std::pair<QVariant, QVariant>> all(std::begin(rows), std::end(rows));
    for (const QVariant& same :
         QVariantList{QStringList{"", "a"}, QStringList(), QRect(), QPoint(), QSize(3, 4),
                      QLineF(1, 2, 3, 4.5), QColor(1, 2, 3, 4), " ", "\r", " \r\n ", "a\r\nb\rc\n",
                      QString(QChar(0xA0)), "]]>", QString::fromUtf8("\xF0\x9F\x98\x80")})
        all.append({same, same});
    for (const auto& [value, expected] : all) {
        const QVariant back = reread(value);
        EXPECT_EQ(back, expected) << value.toString().toStdString();
        EXPECT_EQ(back.userType(), expected.userType()) << value.toString().toStdString();
    }
    EXPECT_TRUE(m_warnings.isEmpty());
}

TEST_F(KuxXmlMementoFileTest, WhatXmlCannotHoldIsReplacedAndTheKeyNamed)
{
    const QString text = QStringLiteral("a\x01") + QChar(0xDC00) + QChar(0xFFFE) + QLatin1Char('b');
    const QString replaced = "a\uFFFD\uFFFD\uFFFDb";
    const KuuMemento memento = mementoWith(text, "the key");
    const KuuMemento back = bytesToMemento(mementoToBytes(memento), QString());
    EXPECT_EQ(back.getField("the key"), replaced);
    ASSERT_EQ(m_warnings.size(), 1);
    EXPECT_TRUE(m_warnings.at(0).contains("'the key'"));
}

TEST_F(KuxXmlMementoFileTest, ForeignFormsAreReadByTheSameRules)
{
    const std::pair<const char*, QVariant> rows[] = {
        {"<f type='QColor'><red>1</red><red>9</red></f>", QColor(1, 0, 0, 0)},
        {"<f type='QByteArray'>\xC3\xA9</f>", QByteArray("\xC3\xA9")},
        {"<f type='QMap'><a>1</a><a>2</a></f>", QVariantMap{{"a", "2"}}},
        {"<f type='Unknown'><a>1</a></f>", QVariant()},
        {"<f type='QPoint'><y>7</y></f>", QPoint(0, 7)},
        {"<f>a<!-- note -->b<![CDATA[<c>]]></f>", "ab<c>"},
        {"<f other='1'>x</f>", "x"},
        {"<f>&#x1F600;&#65;</f>", QString::fromUtf8("\xF0\x9F\x98\x80"
                                                    "A")},
        {"<f>&#32;</f>", " "},
        {"<f>a\r\nb</f>", "a\nb"},
        {"<f type='QVariantList'><!-- none --><QVariant>1</QVariant></f>", QVariantList{"1"}}};
    for (const auto& [element, expected] : rows) {
        for (const bool plain : {false, true}) {
            QByteArray bytes =
                QByteArray("<Thing><fields type=\"QMap\">") + element + "</fields></Thing>";
            if (plain)
                bytes.replace('\'', '"');
            const QVariant value = bytesToMemento(bytes, QString()).getField("f");
            EXPECT_EQ(value, expected) << element;
            EXPECT_EQ(value.userType(), expected.userType()) << element;
            EXPECT_TRUE(bytesToMemento(bytes, QString()) == readByDom(bytes)) << element;
        }
    }
    EXPECT_EQ(bytesToMemento("<T><version>x</version></T>", QString()).getVersion(), 100);
}

TEST_F(KuxXmlMementoFileTest, DamagedFilesFailAlikeOnBothRoads)
{
    const QByteArray good = mementoToBytes(Generator(7).memento(3));
    std::mt19937 random(1);
    for (int round = 0; round < 1500; ++round) {
        QByteArray bytes = good;
        bytes[int(random() % unsigned(bytes.size()))] =
            round % 2 ? char(random()) : "<>&/\"]"[random() % 6];
        KuuMemento streamed, fromDom;
        const auto streamError =
            errorOf<HbeProgrammingError>([&] { streamed = bytesToMemento(bytes, "bytes"); });
        EXPECT_EQ(streamError, errorOf<HbeProgrammingError>([&] { fromDom = readByDom(bytes); }));
        ASSERT_TRUE(streamed == fromDom) << bytes.toStdString();
    }
}

TEST_F(KuxXmlMementoFileTest, RefusalsNameTheirReason)
{
    EXPECT_TRUE(errorOf<HbeProgrammingError>([&] {
                    save(m_directory, KuuMemento());
                }).endsWith("Memento is not valid."));
    const KuuMemento hash = mementoWith(QVariantHash());
    const QString unsupported =
        QStringLiteral("Unsupported value type 'QVariantHash' to insert in memento XML file.");
    EXPECT_TRUE(
        errorOf<HbeProgrammingError>([&] { save(m_directory, hash); }).endsWith(unsupported));
    EXPECT_TRUE(errorOf<HbeProgrammingError>([&] { mementoToXml(hash); }).endsWith(unsupported));
    EXPECT_TRUE(m_directory.entryList(QDir::Files).isEmpty());

    const KuuId id = KuuId::generate(RELATION);
    const QString path = m_directory.filePath(getFileName(id));
    EXPECT_EQ(errorOf<HbeUserError>([&] { read(m_directory, id); }),
              QString("Cannot find XML file '%1'.").arg(path));
    save(path, KuuMemento(KuuId("thinG", id.getUuid())));
    EXPECT_EQ(errorOf<HbeUserError>([&] { read(m_directory, id); }),
              QString("XML file '%1' is not valid.\nIts memento relation is 'thinG'.").arg(path));
    EXPECT_EQ(errorOf<HbeError>([&] { save("/nowhere/a.xml", mementoWith(1)); }),
              "Cannot create or open for writing the XML file '/nowhere/a.xml'.");

    QVariant deep = 1;
    for (int i = 0; i < 1100; ++i)
        deep = QVariantList{deep};
    EXPECT_THROW(mementoToBytes(mementoWith(deep)), HbeProgrammingError);
}

TEST_F(KuxXmlMementoFileTest, FilesAreFoundByRelationAndId)
{
    const KuuMemento first = mementoWith(1);
    const KuuMemento second(KuuId::generate(RELATION), first);
    const KuuMemento other(KuuId::generate("Thing_part"), first);
    save(m_directory, QList<KuuMemento>{first, other});
    save(m_directory, second);
    QFile(m_directory.filePath("thing_1234.xml")).open(QIODevice::WriteOnly);
    QFile(m_directory.filePath(QStringLiteral("thing") + first.getId().getUuid() + ".xml"))
        .open(QIODevice::WriteOnly);

    EXPECT_TRUE(
        QFile::exists(m_directory.filePath(QString("thing_%1.xml").arg(first.getId().getUuid()))));
    QList<KuuId> ids = getIdList(m_directory, RELATION);
    EXPECT_THAT(ids, testing::UnorderedElementsAre(first.getId(), second.getId()));
    EXPECT_EQ(read(m_directory, other.getId()).getField("f"), "1");

    EXPECT_TRUE(exists(m_directory, first.getId()));
    destroy(m_directory, first.getId());
    EXPECT_FALSE(exists(m_directory, first.getId()));
    EXPECT_EQ(getIdList(m_directory, RELATION).size(), 1);
}

TEST_F(KuxXmlMementoFileTest, ABatchWithAFaultLeavesEveryFileAsItWas)
{
    const KuuMemento good = mementoWith(1);
    save(m_directory, good);
    KuuMemento changed = good;
    changed.setField("f", 2);
    EXPECT_THROW(save(m_directory, QList<KuuMemento>{changed, mementoWith(QVariantHash())}),
                 HbeProgrammingError);
    EXPECT_EQ(read(m_directory, good.getId()).getField("f"), "1");
    EXPECT_EQ(m_directory.entryList(QDir::Files | QDir::Hidden).size(), 1);
}
} // namespace
