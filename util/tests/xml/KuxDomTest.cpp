#include <util/xml/KuxDom.h>

#include "ErrorText.h"
#include "FileBytes.h"

#include <basic/error/HbeError.h>

#include <QtCore/QThread>

namespace
{
const QString ROOT = "settings";

class KuxDomTest : public testing::Test
{
protected:
    KuxDomTest() { m_dom.load(QString(), true); }

    KuxDom reloaded() const
    {
        KuxDom dom(ROOT, m_path);
        dom.load();
        return dom;
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath("s.xml");
    KuxDom m_dom{ROOT, m_path};
};

TEST_F(KuxDomTest, AMissingFileIsCreatedOnlyOnRequest)
{
    KuxDom dom(ROOT, m_folder.filePath("other.xml"));
    dom.load();
    EXPECT_FALSE(dom.isValid());
    EXPECT_FALSE(dom.set("a", 1));
    EXPECT_FALSE(QFile::exists(dom.filePath()));
    dom.load(QString(), true);
    EXPECT_TRUE(dom.isValid());
    EXPECT_TRUE(QFile::exists(dom.filePath()));

    writeBytes(m_path, "<other/>");
    EXPECT_EQ(errorOf<HbeError>([&] { dom.load(m_path); }),
              QString("DOM document load from XML file '%1' is not valid.").arg(m_path));
    EXPECT_FALSE(dom.isValid());
}

TEST_F(KuxDomTest, ValuesComeBackEqualFromTheFile)
{
    const QVariantList list{1, "x"};
    const QByteArray zero("\0", 1);
    const QVariantList values{1,    "1",  2.5,      true, QVariant(), " ", "",
                              "@x", zero, "a\r\nb", "é<", 1e300,      list};
    int i = 0;
    for (const QVariant& value : values) {
        const QString path = QString("group/with blank/v%1").arg(i++);
        EXPECT_EQ(m_dom.set(path, value), value != QVariant(QString())) << i;
        const QVariant back = reloaded().get(path, QString());
        EXPECT_EQ(back, value) << i;
        EXPECT_EQ(back.userType(), value.userType()) << i;
    }
}

TEST_F(KuxDomTest, SettingAnswersWhetherTheTextChanged)
{
    const QString path = "/a//b/";
    EXPECT_TRUE(m_dom.set(path, 5));
    EXPECT_FALSE(m_dom.set(path, 5));
    EXPECT_TRUE(m_dom.set(path, "5"));
    EXPECT_TRUE(m_dom.set(path, ""));
    EXPECT_EQ(m_dom.get("a/b"), "");
    EXPECT_FALSE(m_dom.set("x/y", ""));
    EXPECT_FALSE(m_dom.get("x").isValid());
    EXPECT_FALSE(m_dom.set("//", 1));
    EXPECT_EQ(m_dom.get(QString(), 3), 3);
    EXPECT_TRUE(m_dom.removeElement("a"));
    EXPECT_FALSE(m_dom.removeElement("a"));
    EXPECT_TRUE(reloaded().toString().endsWith("<settings/>\n"));
}

TEST_F(KuxDomTest, TheLastElementOfANameGoverns)
{
    writeBytes(m_path, "<settings><a><b>1</b></a><a><b>2</b><b>3</b></a></settings>");
    m_dom.load();
    EXPECT_EQ(m_dom.get("a/b"), 3);
    EXPECT_TRUE(m_dom.set("a/b", 4));
    EXPECT_EQ(m_dom.toString().count("<b>"), 3);
    EXPECT_EQ(reloaded().get("a/b"), 4);
}

TEST_F(KuxDomTest, ListsAndMapsAreElementsAndWriteOnlyChanges)
{
    const QString path = "recent/studies";
    const QString tag = "studyID";
    const QVariantList list{"x", 2, ""};
    EXPECT_TRUE(m_dom.setList(path, tag, list));
    EXPECT_FALSE(m_dom.setList(path, tag, list));
    EXPECT_EQ(reloaded().getList(path, tag), list);

    const QVariantMap map{{"a key", 1}, {"b", "x"}};
    EXPECT_TRUE(m_dom.setMap("m", map));
    EXPECT_FALSE(m_dom.setMap("m", map));
    EXPECT_TRUE(m_dom.setMap("m", QVariantMap{{"b", "x"}}));
    EXPECT_EQ(reloaded().getMap("m"), (QVariantMap{{"b", "x"}}));

    const QList<QVariantMap> maps{map, QVariantMap(), QVariantMap{{"b", true}}};
    EXPECT_TRUE(m_dom.setMapList(path, "map", maps));
    EXPECT_FALSE(m_dom.setMapList(path, "map", maps));
    EXPECT_EQ(reloaded().getMapList(path, "map"), maps);
    EXPECT_EQ(reloaded().getList(path, tag), list);
    EXPECT_FALSE(m_dom.setList("none", tag, QVariantList()));
}

TEST_F(KuxDomTest, SavingByHandAndForeignChangesAreSeen)
{
    m_dom.setAutosave(false);
    EXPECT_TRUE(m_dom.set("a", 1));
    EXPECT_FALSE(reloaded().get("a").isValid());
    EXPECT_FALSE(m_dom.isModifiedOnDisk());
    QThread::msleep(20);
    writeBytes(m_path, "<settings><a>7</a></settings>");
    EXPECT_TRUE(m_dom.isModifiedOnDisk());
    m_dom.save();
    EXPECT_FALSE(m_dom.isModifiedOnDisk());
    EXPECT_EQ(reloaded().get("a"), 1);
}
} // namespace
