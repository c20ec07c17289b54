#include <util/system/KusPath.h>

#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include "ErrorText.h"
#include "FileBytes.h"

namespace
{
/// The project "p" lives in a temporary directory; "lost" is known by name only.
class KusPathTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_previous = KusPath::setProjectResolver([this](const QString& id) {
            return id == QLatin1String("p") ? m_dir.path() : QString();
        });
    }
    void TearDown() override { KusPath::setProjectResolver(m_previous); }

    QString at(const char* path) const { return m_dir.filePath(QString::fromUtf8(path)); }

    QTemporaryDir m_dir;
    KusPath::ProjectResolver m_previous;
};
} // namespace

TEST_F(KusPathTest, ResolvesShortcutsInTheProject)
{
    const struct {
        const char* path;
        const char* absolute;
        const char* directory;
        const char* name;
        const char* shortened;
    } rows[] = {
        {"%public%/a.txt", "public/a.txt", "public", "a.txt", "%public%/a.txt"},
        {"%REPORT%/x/b.tar.gz", "report/x/b.tar.gz", "report/x", "b.tar.gz", "%report%/x/b.tar.gz"},
        {"%batch%", "batch", "batch", "", "%batch%"},
        {"%preview%//x/./c", "preview/x/c", "preview/x", "c", "%preview%/x/c"},
        {"%database%/../d", "d", ".", "d", "%database%/../d"},
    };
    for (const auto& row : rows) {
        const KusPath path(row.path, "p");
        EXPECT_TRUE(path.isValid() && path.dirIsShortcut()) << row.path;
        EXPECT_EQ(path.absolutePath(), at(row.absolute)) << row.path;
        EXPECT_EQ(path.absoluteDirPath(), QDir::cleanPath(at(row.directory))) << row.path;
        EXPECT_EQ(path.fileName(), row.name) << row.path;
        EXPECT_EQ(path.shortPath(), row.shortened) << row.path;
    }
}

TEST_F(KusPathTest, ShortensWholeNamesOfTheProjectWithoutRegardToCase)
{
    const auto shortened = [](const QString& path, const char* id = "p") {
        return KusPath(path, id).shortPath();
    };
    EXPECT_EQ(shortened(at("report/x/a.txt")), "%report%/x/a.txt");
    EXPECT_EQ(shortened(at("report")), "%report%");
    EXPECT_EQ(shortened(at("report").toUpper() + "/A.txt"), "%report%/A.txt");
    EXPECT_EQ(shortened(at("reports/a.txt")), at("reports/a.txt"));
    EXPECT_EQ(shortened(at("other/a.txt")), at("other/a.txt"));
    EXPECT_EQ(shortened(at("report/a.txt"), "lost"), at("report/a.txt"));
}

TEST_F(KusPathTest, StaysValidWhenTheProjectMoves)
{
    const QString stored = KusPath(at("batch/run.xml"), "p").shortPath();
    KusPath::setProjectResolver([](const QString&) { return QStringLiteral("/moved/"); });
    EXPECT_EQ(KusPath(stored, "p").absolutePath(), "/moved/batch/run.xml");
}

TEST_F(KusPathTest, RefusesToResolveWithoutAProject)
{
    const QString pattern = QStringLiteral(
        "'QString KusPath::absoluteDirPath() const' in file 'system/KusPath' failed:\n\n%1");
    KusPath path("%BATCH%/run.xml");
    EXPECT_TRUE(path.dirIsShortcut());
    EXPECT_FALSE(path.isValid());
    EXPECT_FALSE(path.exists());
    EXPECT_EQ(errorOf<HbeProgrammingError>([&] { path.absoluteDirPath(); }),
              pattern.arg("Cannot use shortcut while no project is provided"));
    path.setProjectId("lost");
    EXPECT_FALSE(path.isValid());
    EXPECT_EQ(errorOf<HbeProgrammingError>([&] { path.absolutePath(); }),
              pattern.arg("Project path is empty"));
    path.setProjectId("p");
    EXPECT_EQ(path.absolutePath(), at("batch/run.xml"));
}

TEST_F(KusPathTest, RefusesRelativePathsAndKeepsWhatItHeld)
{
    KusPath path("/a/b.txt");
    EXPECT_EQ(errorOf<HbeProgrammingError>([&] { path.setFullPath("x/y"); }),
              "'void KusPath::setFullPath(const QString&)' in file 'system/KusPath' failed:\n\n"
              "Relative paths are not authorized in KusPath! Provided path was x/y");
    EXPECT_EQ(path.absolutePath(), "/a/b.txt");
    path.setPath("/c/./d/", "e.tar.gz");
    EXPECT_EQ(path.absolutePath(), "/c/d/e.tar.gz");
    EXPECT_EQ(path.completeBaseName(), "e.tar");
    path.setFullPath(QString());
    EXPECT_FALSE(path.isValid());
    EXPECT_EQ(path.absolutePath(), "");
}

TEST_F(KusPathTest, ComparesPathsAndFiles)
{
    writeBytes(at("report/a.txt"));
    ASSERT_TRUE(QFile::link(at("report/a.txt"), at("link.txt")));
    const KusPath shortcut("%report%/a.txt", "p");
    const KusPath absolute(at("report/a.txt"));
    const KusPath link(at("link.txt"));
    const KusPath missing(at("missing.txt"));

    EXPECT_TRUE(shortcut.exists());
    EXPECT_TRUE(shortcut.isSamePath(absolute));
    EXPECT_TRUE(absolute.isSamePath(KusPath(at("REPORT/A.txt"))));
    EXPECT_FALSE(absolute.isSamePath(link));
    EXPECT_TRUE(shortcut.isSameFile(link));
    EXPECT_FALSE(missing.isSameFile(missing));
    EXPECT_TRUE(KusPath("%report%/a").isSamePath(KusPath("%REPORT%/A")));
    EXPECT_FALSE(KusPath("%report%/a").isSamePath(KusPath("%report%/a", "p")));
}

TEST_F(KusPathTest, MakesNamesThatEveryPlatformTakes)
{
    const struct {
        const char* text;
        const char* name;
    } rows[] = {{"a:b*c?d\"e<f>g|h", "a_b_c_d_e_f_g_h"},
                {"x/y\\z\n", "x_y_z_"},
                {"..", "__"},
                {"été 1.5%", "été 1.5%"}};
    const QRegularExpression valid = KusPath::getValidFileRegExpForLineEdit();
    for (const auto& row : rows) {
        const QString name = KusPath::convertStringToValidFileName(row.text);
        EXPECT_EQ(name, row.name);
        EXPECT_TRUE(valid.match(name).hasMatch()) << row.name;
        EXPECT_EQ(valid.match(row.text).hasMatch(), name == row.text) << row.text;
    }
}

TEST_F(KusPathTest, FindsTheInstallDirectoryOrSaysThatItIsMissing)
{
    const QByteArray before = qgetenv("KELVANE_HOME");
    qputenv("KELVANE_HOME", QFile::encodeName(m_dir.path()));
    EXPECT_EQ(KusPath::getInstallDirectory(), m_dir.path());
    qputenv("KELVANE_HOME", "/no/such");
    EXPECT_EQ(errorOf<HbeUserError>([] { KusPath::getInstallDirectory(); }),
              "Install directory (found in KELVANE_HOME environment variable) '/no/such' does not "
              "exist.");
    qunsetenv("KELVANE_HOME");
    EXPECT_EQ(KusPath::getInstallDirectory(), "");
    if (!before.isEmpty())
        qputenv("KELVANE_HOME", before);
}
