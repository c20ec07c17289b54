#include <util/xml/KuxXml.h>

#include "ErrorText.h"
#include "FileBytes.h"

#include <basic/base/HbbOrderedMap.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <QtXml/QDomDocument>

#include <cmath>

namespace
{
class KuxXmlTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
};

QString parseError(const QByteArray& bytes)
{
    QDomDocument document;
    return errorOf<HbeProgrammingError>([&] { KuxXml::readXml(bytes, "f.xml", document); })
        .section("\n\n", 1);
}

QString where(int line, int column, const QString& fault)
{
    return QStringLiteral("Error while parsing XML file 'f.xml' at line %1/column %2: '%3'.")
        .arg(line)
        .arg(column)
        .arg(fault);
}

QByteArray nested(int depth)
{
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

TEST_F(KuxXmlTest, FilesThatCannotBeReadSayWhy)
{
    QDomDocument document;
    const QString missing = m_folder.filePath("none.xml");
    EXPECT_EQ(errorOf<HbeUserError>([&] { KuxXml::readXml(missing, document); }),
              QString("Cannot find XML file '%1'.").arg(missing));
    EXPECT_EQ(errorOf<HbeError>([&] { KuxXml::readXml(m_folder.path(), document); }),
              QString("Cannot open XML file '%1' for reading.").arg(m_folder.path()));
}

TEST_F(KuxXmlTest, OnlyTheLegacyFileIsRepaired)
{
    const QByteArray bytes("<r>\x07 12</r>");
    QDomDocument document;
    const QString legacy = writeBytes(m_folder.filePath("Itz"), bytes);
    KuxXml::readXml(legacy, document);
    EXPECT_EQ(document.documentElement().text(), QString(QChar(0xA7)) + QStringLiteral(" 12"));
    EXPECT_FALSE(QFile::exists(legacy + QStringLiteral(".patched")));

    KuxXml::readXml(writeBytes(m_folder.filePath("Itz.xml"), bytes), document);
    EXPECT_EQ(document.documentElement().text(), "\x07 12");

    writeBytes(m_folder.filePath("Itz"), "<r>");
    EXPECT_THROW(KuxXml::readXml(legacy, document), HbeProgrammingError);
    EXPECT_TRUE(QFile::exists(legacy + QStringLiteral(".patched")));
}

TEST_F(KuxXmlTest, HostileDocumentsEndInAnErrorWithItsPlace)
{
    QByteArray laughs = "<!DOCTYPE r [<!ENTITY a0 \"lol\">";
    for (int i = 1; i < 30; ++i) {
        const QByteArray before = "&a" + QByteArray::number(i - 1) + ';';
        laughs += "<!ENTITY a" + QByteArray::number(i) + " \"" + before.repeated(10) + "\">";
    }
    QByteArray chain = "<!DOCTYPE r [<!ENTITY a0 \"x\">";
    for (int i = 1; i < 20000; ++i) {
        chain +=
            "<!ENTITY a" + QByteArray::number(i) + " \"&a" + QByteArray::number(i - 1) + ";\">";
    }
    const std::pair<QByteArray, QString> rows[] = {
        {nested(100000), where(1, 3001, "elements are nested deeper than 1000")},
        {QByteArray("<a b='1'\n>").repeated(1001),
         where(1001, 2, "elements are nested deeper than 1000")},
        {laughs + "]><r>&a29;</r>", "expand to more than"},
        {laughs + "]><r b='&a29;'/>", "expand to more than"},
        {"<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>\n<r>&a;</r>",
         where(2, 4, "entity a uses itself")},
        {chain + "]><r>&a19999;</r>", "nested too deep"},
        {"<!DOCTYPE r [<!ENTITY a '<x>'>]><r>" + QByteArray("&a;").repeated(5000) + "</r>",
         "nested deeper"},
        {"<!DOCTYPE r [<!ENTITY a '&#60;x>'>]><r>" + QByteArray("&a;").repeated(5000) + "</r>",
         "nested deeper"},
        {"<!DOCTYPE r [<!ENTITY % p \"<!ENTITY a 'x'>\"> %p;]><r/>", "parameter entities"},
        {"<r>\n\xC3\xA9x\xFFy</r>", where(2, 3, "bytes that are no text in the encoding UTF-8")},
        {"<r>\xED\xA0\x80</r>", "UTF-8"},
        {"<?xml version='1.0' encoding='nonsense'?><r/>", "unknown encoding"},
        {QByteArray("\xFF\xFE<\0r\0/\0>", 9), "UTF-16LE"},
        {"<r>x", where(1, 5, "unexpected end of file")},
        {"", where(1, 1, "unexpected end of file")},
        {"<r>x</s>", where(1, 8, "tag mismatch")}};
    for (const auto& [bytes, message] : rows) {
        const QString error = parseError(bytes);
        EXPECT_TRUE(error.contains(message))
            << error.toStdString() << " for " << bytes.left(100).toStdString();
        EXPECT_TRUE(error.startsWith("Error while parsing XML file 'f.xml' at line "));
        EXPECT_THROW(KuxXmlMementoFile::bytesToMemento(bytes, QString()), HbeProgrammingError);
    }
    EXPECT_EQ(parseError(nested(1000)), QString());
}

TEST_F(KuxXmlTest, HarmlessEntitiesAndEncodingsAreRead)
{
    const std::pair<QByteArray, QString> rows[] = {
        {"<!DOCTYPE r [<!ENTITY a \"AA\"><!ENTITY b \"&a;-&a;\">]><r>x&b;y</r>", "xAA-AAy"},
        {"<!DOCTYPE r [<!-- ' --><!ENTITY e \"<i>k</i>\">]><r>&e;&e;</r>", "kk"},
        {"<!DOCTYPE r [<!ENTITY f SYSTEM \"file:///etc/passwd\">]><r>x&f;</r>", "x"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><r>\xE9</r>", QString(QChar(0xE9))},
        {QByteArray("\xFF\xFE<\0r\0>\0\xE9\0<\0/\0r\0>\0", 18), QString(QChar(0xE9))},
        {"\xEF\xBB\xBF<r>a\r\nb\rc</r>", "a\nb\nc"},
        {"<r>&#xA0;</r>", QString(QChar(0xA0))},
        {"<r>&#13;&#10;</r>", "\r\n"},
        {"<r> <i/> </r>", ""}};
    for (const auto& [bytes, text] : rows) {
        QDomDocument document;
        ASSERT_NO_THROW(KuxXml::readXml(bytes, QString(), document)) << bytes.toStdString();
        EXPECT_EQ(document.documentElement().text(), text) << bytes.toStdString();
    }
}

TEST_F(KuxXmlTest, ForeignFilesReadAsByTheBareParserOrFailWithAPlace)
{
    const QDir folder(qEnvironmentVariable("KELVANE_TEST_DATA") + QStringLiteral("/edge-xml"));
    if (!folder.exists()) {
        GTEST_SKIP() << "no test data (KELVANE_TEST_DATA)";
    }
    int good = 0;
    for (const char* kind : {"good", "errors", "recurse"}) {
        const QDir sub(folder.filePath(QLatin1String(kind)));
        const QStringList names = sub.entryList(QDir::Files);
        for (const QString& name : names) {
            QFile file(sub.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            QDomDocument bare;
            const bool ok = bare.setContent(file.readAll(), true);
            QDomDocument ours;
            try {
                KuxXml::readXml(file.fileName(), ours);
                EXPECT_TRUE(ok) << name.toStdString();
                const QString expected = bare.toString().remove(QLatin1Char('\r'));
                EXPECT_EQ(ours.toString().replace(QLatin1String("&#xd;"), QString()),
                          QString(expected).replace(QLatin1String("&#xd;"), QString()))
                    << name.toStdString();
                good += qstrcmp(kind, "good") == 0;
            } catch (const HbeProgrammingError& error) {
                EXPECT_TRUE(error.getMessage().contains("at line"));
                EXPECT_TRUE(qstrcmp(kind, "good") != 0 || !ok)
                    << name.toStdString() << error.what();
            }
        }
    }
    EXPECT_GE(good, 38);
}

TEST_F(KuxXmlTest, TextElementsReadBackAsTheyWereSaved)
{
    const QString texts[] = {"plain",     QStringLiteral("two\nlines ]]> <b>&"),
                             " \t",       QStringLiteral(" \r\n"),
                             "a\rb\r\nc", QString(),
                             "]]>",       QStringLiteral("line\nfeed")};
    QDomDocument document;
    QDomElement root = document.createElement("r");
    document.appendChild(root);
    for (const QString& text : texts) {
        root.appendChild(KuxXml::createTextOrCDATANode(document, "t", text));
        root.appendChild(KuxXml::createCDataNode(document, "c", text));
    }
    EXPECT_TRUE(root.lastChild().firstChild().isCDATASection());
    const QString path = m_folder.filePath("a.xml");
    KuxXml::saveXml(path, document);
    KuxXml::readXml(path, document);
    QDomElement element = document.documentElement().firstChildElement();
    for (const QString& text : texts) {
        for (int form = 0; form < 2; ++form) {
            if (form == 0 || !text.trimmed().isEmpty()) {
                EXPECT_EQ(KuxXml::getValue(element), text);
            }
            element = element.nextSiblingElement();
        }
    }
}

TEST_F(KuxXmlTest, ElementHelpersKeepTheirRules)
{
    QDomDocument document;
    KuxXml::readXml("<r><a n='1'>x</a><b><a n='2'><c/></a></b><a n='1'/><d>t<e/></d></r>",
                    QString(), document);
    const QDomElement root = document.documentElement();
    const QString a = "a";
    const QString n = "n";
    EXPECT_EQ(KuxXml::getElementsFromTag(root, a, false).size(), 2);
    EXPECT_EQ(KuxXml::getElementsFromTag(root, a, true).size(), 3);
    EXPECT_EQ(KuxXml::getElementsFromAttribute(root, a, n, "1", true).size(), 2);
    EXPECT_TRUE(KuxXml::getElementFromAttribute(root, a, n, "2", false).isNull());
    EXPECT_EQ(KuxXml::getElementFromAttribute(root, QString(), n, "2", true)
                  .firstChildElement()
                  .tagName(),
              "c");
    EXPECT_EQ(KuxXml::getElementFromPath(root, "/b//a/c").tagName(), "c");
    EXPECT_TRUE(KuxXml::getElementFromPath(root, "b/z/c").isNull());

    QDomElement first = root.firstChildElement(a);
    KuxXml::setValue(first, "y");
    EXPECT_EQ(KuxXml::getValue(first), "y");
    QDomElement empty = root.lastChildElement(a);
    KuxXml::setValue(empty, "z");
    EXPECT_EQ(KuxXml::getValue(empty), "z");
    QDomElement parent = root.firstChildElement("b");
    KuxXml::setValue(parent, "no");
    EXPECT_EQ(parent.text(), QString());
    EXPECT_EQ(KuxXml::getValue(QDomElement()), QString());

    KuxXml::removeNodeLevel(parent);
    EXPECT_EQ(KuxXml::getElementsFromTag(root, a, false).size(), 3);
    EXPECT_EQ(root.childNodes().at(1).toElement().attribute(n), "2");
}

TEST_F(KuxXmlTest, ScalarsAreStrictAndInTheCLocale)
{
    bool ok = true;
    EXPECT_TRUE(KuxXml::decodeBool("YES", &ok));
    EXPECT_TRUE(ok);
    EXPECT_FALSE(KuxXml::decodeBool("1", &ok));
    EXPECT_FALSE(ok);
    EXPECT_TRUE(KuxXml::decodeBool("maybe", true));
    EXPECT_FALSE(KuxXml::decodeBool("No", true));
    EXPECT_EQ(KuxXml::decodeInt("3.7", -1), -1);
    EXPECT_EQ(KuxXml::decodeInt16("40000", qint16(-1)), -1);
    EXPECT_EQ(KuxXml::decodeUint64("18446744073709551615", 0), ~quint64(0));
    EXPECT_EQ(KuxXml::decodeDouble("1,5", -1.0), -1.0);
    for (const double value : {0.1, 1.0 / 3, 1e300, -5.0, 5e-324, -0.0}) {
        const double back = KuxXml::decodeDouble(KuxXml::encodeDouble(value), 99.0);
        EXPECT_EQ(std::signbit(back), std::signbit(value));
        EXPECT_EQ(back, value);
    }
    EXPECT_EQ(KuxXml::encodeDouble(0.1), "0.1");

    QDomDocument document;
    QDomElement element = document.createElement("e");
    element.setAttribute("on", "True");
    element.setAttribute("n", "12");
    EXPECT_TRUE(KuxXml::decodeBool(element, "on", false));
    EXPECT_TRUE(KuxXml::decodeBool(element, "off", true));
    EXPECT_EQ(KuxXml::decodeInt(element, "n", 0), 12);

    const HbbOrderedMap<QString, QString> fields{{"z", "1\n2"}, {"a", QString()}};
    KuxXml::saveFields(document, element, fields);
    const HbbOrderedMap<QString, QString> back = KuxXml::loadFields(element);
    EXPECT_EQ(back.value("z"), "1\n2");
    EXPECT_EQ(back.begin()->first, "z");
    EXPECT_EQ(back.size(), 2);
}
} // namespace
