#include <util/system/KusFileUtils.h>

#include <basic/error/HbeProgrammingError.h>

#include "ErrorText.h"
#include "FileBytes.h"

#include <QtCore/QRegularExpression>

namespace
{
/// root/{a.txt (3 bytes), .hidden (4), sub/b.xml (5), sub/deep/c.txt (6), empty/}, out/kept.txt (7)
/// and a link sub/link to out.
class KusFileUtilsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        writeBytes(at("root/a.txt"), "123");
        writeBytes(at("root/.hidden"), "1234");
        writeBytes(at("root/sub/b.xml"), "12345");
        writeBytes(at("root/sub/deep/c.txt"), "123456");
        writeBytes(at("out/kept.txt"), "1234567");
        ASSERT_TRUE(QDir(m_dir.path()).mkdir("root/empty"));
        ASSERT_TRUE(QFile::link(at("out"), at("root/sub/link")));
    }

    QString at(const char* path) const { return m_dir.filePath(QString::fromUtf8(path)); }
    QStringList names() const
    {
        return QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_dir;
};
} // namespace

TEST_F(KusFileUtilsTest, RemovesATreeAndNotWhatItsLinksPointTo)
{
    EXPECT_TRUE(KusFileUtils::removePath(at("root/"), true));
    EXPECT_EQ(names(), QStringList{"out"});
    EXPECT_TRUE(QFile::exists(at("out/kept.txt")));
}

TEST_F(KusFileUtilsTest, RemovesALinkToADirectoryAsALink)
{
    EXPECT_TRUE(KusFileUtils::removePath(at("root/sub/link/"), true));
    EXPECT_FALSE(QFileInfo(at("root/sub/link")).isSymLink());
    EXPECT_TRUE(QFile::exists(at("out/kept.txt")));
}

TEST_F(KusFileUtilsTest, WhatIsMissingCountsAsRemoved)
{
    EXPECT_TRUE(KusFileUtils::removePath(at("root/a.txt")));
    EXPECT_TRUE(KusFileUtils::removePath(at("root/a.txt")));
    EXPECT_TRUE(KusFileUtils::canBeRemoved(at("root/a.txt")));
}

TEST_F(KusFileUtilsTest, AnEmptyPathToRemoveIsAProgrammingError)
{
    EXPECT_EQ(errorOf<HbeProgrammingError>([] { KusFileUtils::removePath(QString()); }),
              "'static bool KusFileUtils::removePath(const QString&, bool)' in file "
              "'system/KusFileUtils' failed:\n\nPath to remove is empty.");
}

TEST_F(KusFileUtilsTest, MovesADirectoryAsideUnderADatedNameThatIsFree)
{
    const QRegularExpression dated(
        "^.*/root_remove_\\(\\d\\d-\\d\\d-\\d\\d__\\d\\d-\\d\\d\\)(_\\d)?$");
    const QString first = KusFileUtils::aboutToRemoveDir(at("root"));
    EXPECT_TRUE(dated.match(first).hasMatch()) << first.toStdString();
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("root"));
    const QString second = KusFileUtils::aboutToRemoveDir(at("root"));
    EXPECT_TRUE(dated.match(second).hasMatch()) << second.toStdString();
    EXPECT_NE(first, second);
    EXPECT_FALSE(QFile::exists(at("root")));
    EXPECT_TRUE(QFile::exists(first + "/a.txt"));
}

TEST_F(KusFileUtilsTest, TheTestOfRemovalChangesNothing)
{
    const QStringList before = KusFileUtils::getPaths(QDir(m_dir.path()), true);
    EXPECT_TRUE(KusFileUtils::canBeRemoved(at("root")));
    EXPECT_TRUE(KusFileUtils::canBeRemoved(at("root/a.txt")));
    EXPECT_FALSE(KusFileUtils::canBeRemoved("/"));
    EXPECT_EQ(KusFileUtils::getPaths(QDir(m_dir.path()), true), before);
}

TEST_F(KusFileUtilsTest, ADirectoryWhoseNameHasFullLengthCanBeRemoved)
{
    const QString path = m_dir.filePath(QString(255, QLatin1Char('n')));
    writeBytes(path + "/file", "1");
    EXPECT_TRUE(KusFileUtils::removePath(path, true));
    EXPECT_EQ(names(), (QStringList{"out", "root"}));
}

TEST_F(KusFileUtilsTest, SizesCountFilesOnceAndNoLinks)
{
    const auto size = [&](const char* path, const QStringList& leftOut = {}) {
        return KusFileUtils::getSize(QFileInfo(at(path)), leftOut);
    };
    EXPECT_EQ(size("root"), 3 + 4 + 5 + 6);
    EXPECT_EQ(size("root", {"deep", "a.txt"}), 4 + 5);
    EXPECT_EQ(size("root/a.txt"), 3);
    EXPECT_EQ(size("root/sub/link"), 7); // named by the caller
    EXPECT_EQ(size("missing"), 0);
    EXPECT_EQ(KusFileUtils::getStringSize(1536 * 1024), "1.50 MiB");
}

TEST_F(KusFileUtilsTest, ListsSortedWithParentsFirst)
{
    const QDir root(at("root"));
    EXPECT_EQ(KusFileUtils::getPaths(root, false),
              (QStringList{at("root/.hidden"), at("root/a.txt")}));
    EXPECT_EQ(KusFileUtils::getPaths(root, true, {"*.txt"}),
              (QStringList{at("root/a.txt"), at("root/sub/deep/c.txt")}));
    EXPECT_EQ(KusFileUtils::getPaths(root, true, {}, QDir::Dirs | QDir::NoSymLinks),
              (QStringList{at("root/empty"), at("root/sub"), at("root/sub/deep")}));
    EXPECT_EQ(KusFileUtils::getPaths(QDir(at("missing")), true), QStringList());
}

TEST_F(KusFileUtilsTest, AHiddenFileMakesADirectoryNotEmpty)
{
    EXPECT_TRUE(KusFileUtils::dirIsEmpty(QDir(at("root/empty"))));
    writeBytes(at("root/empty/.hidden"), "");
    EXPECT_FALSE(KusFileUtils::dirIsEmpty(QDir(at("root/empty"))));
}

TEST_F(KusFileUtilsTest, TheTestOfWritingLeavesNothingBehind)
{
    EXPECT_TRUE(KusFileUtils::isWritable(at("root/empty")));
    EXPECT_TRUE(KusFileUtils::isWritable(at("root/a.txt")));
    EXPECT_FALSE(KusFileUtils::isWritable(at("missing")));
    EXPECT_FALSE(KusFileUtils::isWritable(QString()));
    EXPECT_TRUE(KusFileUtils::dirIsEmpty(QDir(at("root/empty"))));
}

TEST_F(KusFileUtilsTest, FreeSpaceIsThatOfTheNearestDirectory)
{
    EXPECT_GT(KusFileUtils::getDirectoryFreeSpace(QFileInfo(at("missing/deeper"))), 0);
    EXPECT_FALSE(KusFileUtils::IsFileNtfsCompressed(at("root/a.txt")));
}

TEST(KusFileUtilsNamesTest, RefusesTheCharactersThatSomePlatformRefuses)
{
    for (const char character : {':', '*', '?', '"', '<', '>', '|'}) {
        const QString name = QString("a%1b").arg(QLatin1Char(character));
        EXPECT_FALSE(KusFileUtils::isValidNativePathElementName(name)) << character;
        EXPECT_TRUE(KusFileUtils::pathContainsInvalidCharacters("/x/" + name + "/y")) << character;
    }
    EXPECT_TRUE(KusFileUtils::isValidNativePathElementName("a b'é%.txt"));
    EXPECT_FALSE(KusFileUtils::pathContainsInvalidCharacters("C:/x/y.txt"));
    EXPECT_TRUE(KusFileUtils::pathContainsInvalidCharacters("/C:/x"));
    EXPECT_TRUE(KusFileUtils::pathContainsInvalidCharacters("C:x"));
}

TEST(KusFileUtilsNamesTest, AddsTheFirstExtensionOfTheFilterWhereThereIsNone)
{
    const struct {
        const char* path;
        const char* filter;
        const char* fixed;
    } rows[] = {
        {"/d/name", "Text (*.txt *.csv)", "/d/name.txt"},
        {"/d/name.dat", "Text (*.txt *.csv)", "/d/name.dat"},
        {"/d.x/name.", "Text (*.txt)", "/d.x/name.txt"},
        {"/d/name", "Archives (old) (*.tar.zst)", "/d/name.tar.zst"},
        {"/d/name", "All files (*)", "/d/name"},
        {"/d/name", "Any (*.*)", "/d/name"},
        {"/d/name", "", "/d/name"},
        {"/d/", "Text (*.txt)", "/d/"},
        {"", "Text (*.txt)", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(KusFileUtils::fixFilePath(row.path, row.filter), row.fixed) << row.path;
    EXPECT_EQ(KusFileUtils::fixDirectoryPath("/a/./b/../c/", false), "/a/c");
    EXPECT_EQ(KusFileUtils::fixDirectoryPath("/a/c", true), "/a/c/");
    EXPECT_EQ(KusFileUtils::fixDirectoryPath("/", true), "/");
    EXPECT_EQ(KusFileUtils::fixDirectoryPath("", true), "");
}

TEST(KusFileUtilsNamesTest, ValidatesExtensionsWithoutRegardToCase)
{
    const QStringList extensions{"csv", ".Txt", "*.tar.zst"};
    for (const char* name : {"a.csv", "a.TXT", "a.tar.ZST"})
        EXPECT_TRUE(KusFileUtils::validateExtension(name, extensions)) << name;
    for (const char* name : {"acsv", ".csv", "a.zst", "a.csv.bak", ""})
        EXPECT_FALSE(KusFileUtils::validateExtension(name, extensions)) << name;
    EXPECT_TRUE(KusFileUtils::validateExtension("a.zst", {"csv", "*"}));
    EXPECT_TRUE(KusFileUtils::validateExtension("a.zst", {}));
}

TEST(KusFileUtilsNamesTest, FormatsTheFiltersOfADialog)
{
    const QList<KusFileUtils::Filter> filters{{"Text", {"*.txt", "csv"}}, {"Table", {"*.csv"}}};
    EXPECT_EQ(
        KusFileUtils::formatFilters(filters),
        "All compatible files (*.txt *.csv);;Text (*.txt *.csv);;Table (*.csv);;All files (*)");
    EXPECT_EQ(KusFileUtils::formatFilters(filters, false, false),
              "Text (*.txt *.csv);;Table (*.csv)");
    EXPECT_EQ(KusFileUtils::formatFilters({}), "All files (*)");
}
