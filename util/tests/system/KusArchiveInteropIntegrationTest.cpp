// What other tools write, unpacked here: equal to what they packed, or to what they unpack.
#include <util/system/KusArchive.h>

#include "FileBytes.h"
#include "FileTree.h"
#include "PythonRun.h"
#include "ShellRun.h"

#include <QtCore/QRegularExpression>

#include <fcntl.h>

namespace
{
namespace fs = std::filesystem;

#define REQUIRE_TOOLS()                                                                            \
    for (const char* tool : {"tar", "bsdtar", "zstd"}) {                                           \
        if (QStandardPaths::findExecutable(tool).isEmpty())                                        \
            GTEST_SKIP() << tool << " is not installed";                                           \
    }

/// How long the names of a tree are: what each format can hold.
enum class Names { SHORT, SPLIT, LONG };

class KusArchiveInteropIntegrationTest : public testing::Test
{
protected:
    QString at(const QString& path) const { return m_dir.filePath(path); }

    /// A file of a text that tells it from others, and of a time that does.
    void addFile(const QString& path, int size, unsigned mode = 0644)
    {
        QByteArray bytes = path.toUtf8().repeated(size / path.toUtf8().size() + 1);
        bytes.truncate(size);
        writeBytes(at(path), bytes);
        fs::permissions(at(path).toStdString(), fs::perms(mode));
        setTime(path, 1000000000 + size);
    }
    void setTime(const QString& path, qint64 seconds)
    {
        const timespec times[2] = {{seconds, 0}, {seconds, 250000000}};
        EXPECT_EQ(utimensat(AT_FDCWD, QFile::encodeName(at(path)).constData(), times, 0), 0);
    }

    /// A directory "tree".
    void makeTree(Names names)
    {
        for (const int size : {0, 1, 511, 512, 513, 10240000})
            addFile(QString("tree/of %1").arg(size), size);
        addFile("tree/Gr\u00fc\u00dfe/\u65e5\u672c \U0001f642", 20, 0600);
        addFile("tree/script", 30, 0755);
        addFile("tree/closed", 40, 0400);
        ASSERT_TRUE(QDir(m_dir.path()).mkpath("tree/empty"));
        fs::permissions(at("tree/empty").toStdString(), fs::perms(0700));
        if (names == Names::SHORT)
            return;
        const QString ninety(90, 'n');
        addFile("tree/" + QString(100, 'f'), 50);
        addFile("tree/" + ninety + "/" + ninety, 60);
        if (names == Names::SPLIT)
            return;
        addFile("tree/" + QString(101, 'f'), 50);
        addFile("tree/" + QString(255, 'f'), 55);
        addFile("tree/" + QString(255, 'd') + '/' + QString(85, QChar(0xe9)), 70);
        // A path of 3,900 bytes; with the place of the target it comes near to what a path may be.
        addFile("tree/" + (QString(194, 'p') + '/').repeated(19) + QString(190, 'q'), 80);
        ASSERT_TRUE(QDir(m_dir.path()).mkpath("tree/" + (QString(200, 'e') + '/').repeated(3)));
    }
    void setDirectoryTimes()
    {
        QStringList paths{"tree"};
        for (const auto& entry : fs::recursive_directory_iterator(at("tree").toStdString())) {
            if (entry.is_directory())
                paths.append("tree/" +
                             QString::fromStdString(
                                 fs::relative(entry.path(), at("tree").toStdString()).string()));
        }
        for (int i = 0; i < paths.size(); ++i)
            setTime(paths.at(i), 1100000000 + i);
    }

    /// What the run says; "done" when it does.
    QString unpack(const QString& archivePath, const QString& target, bool readOtherTools)
    {
        KusArchive::ExtractInfo info;
        info.readOtherTools = readOtherTools;
        info.existingFile = KusArchive::ExistingFile::REPLACE;
        EXPECT_TRUE(QDir(m_dir.path()).mkpath(target));
        KusArchive archive(archivePath);
        archive.setExtractOperation(at(target), info);
        return archive.runInCurrentThread() ? "done"
                                            : archive.getErrorText().replace(archivePath, "A");
    }

    QTemporaryDir m_dir{"/tmp/kia"};
};

const char* const PYTHON_WRITER = "import sys, tarfile\n"
                                  "with tarfile.open(sys.argv[1], 'w:gz',"
                                  " format=getattr(tarfile, sys.argv[2])) as tar:\n"
                                  "    tar.add(sys.argv[3], 'tree')\n";
} // namespace

TEST_F(KusArchiveInteropIntegrationTest, UnpacksWhatOtherToolsPack)
{
    REQUIRE_TOOLS();
    REQUIRE_PYTHON();
    const struct {
        QString command;
        Names names;
        bool readOtherTools = true;
    } writers[] = {
        {"tar --format=v7", Names::SHORT},
        {"tar --format=oldgnu", Names::LONG},
        {"tar --format=gnu", Names::LONG},
        {"tar --format=ustar", Names::SPLIT},
        {"tar --format=pax", Names::LONG},
        {"tar --format=ustar -b1", Names::SPLIT, false}, // no padding, and so it is read strictly
        {"tar --format=pax -b1", Names::LONG, false},
        {"bsdtar --format=ustar", Names::SPLIT},
        {"bsdtar --format=pax", Names::LONG},
        {"bsdtar --format=gnutar", Names::LONG},
        {"python USTAR", Names::SPLIT},
        {"python GNU", Names::LONG},
        {"python PAX", Names::LONG},
    };
    for (const Names names : {Names::SHORT, Names::SPLIT, Names::LONG}) {
        makeTree(names);
        setDirectoryTimes();
        const QByteArrayList packed = listTree(at("tree"));
        for (const auto& writer : writers) {
            if (writer.names != names)
                continue;
            for (const char* compression : {"--zstd", "-z"}) {
                SCOPED_TRACE(writer.command.toStdString() + compression);
                const QString path = at("archive"); // of whatever kind: its bytes tell
                if (writer.command.startsWith("python"))
                    runPython(PYTHON_WRITER,
                              {path, writer.command.section(' ', 1) + "_FORMAT", at("tree")});
                else
                    runShell(QString("%1 %2 -C %3 -cf %4 tree")
                                 .arg(writer.command, compression, m_dir.path(), path));
                EXPECT_EQ(unpack(path, "out", writer.readOtherTools), "done");
                EXPECT_EQ(listTree(at("out/tree")), packed);
                fs::remove_all(at("out").toStdString());
            }
        }
    }
}

TEST_F(KusArchiveInteropIntegrationTest, RealArchivesUnpackAsTheirToolsUnpackThemOrAreRefused)
{
    const QString data = qEnvironmentVariable("KELVANE_TEST_DATA") + "/edge-archive/";
    if (!QFileInfo::exists(data))
        GTEST_SKIP() << "no test data (KELVANE_TEST_DATA)";
    REQUIRE_TOOLS();
    const QMap<QString, QString> refused{
        {"hardlink.tar", "Cannot extract 'hard.txt' from archive file 'A': it is a hard "
                         "link; links are never written (at byte 1024)."},
        {"hdr-only.tar", "Cannot extract 'fifo' from archive file 'A': it is a pipe; pipes "
                         "are never written (at byte 512)."},
        {"pax-path-hdr.tar", "Corrupted archive file 'A' (it ends at byte 1024, before the "
                             "member of extended information 'PAX1/PAX1/long-path-name')."},
        {"pax.tar", "Cannot extract 'a/b' from archive file 'A': it is a symbolic link; "
                    "links are never written (at byte 3072)."},
        {"writer-big.tar", "Cannot extract 'tmp/16gig.txt' because archive file 'A' is "
                           "corrupted.\nThe archive ends at byte 512, within its data."},
        {"writer.tar", "Cannot extract 'link.txt' from archive file 'A': it is a symbolic "
                       "link; links are never written (at byte 2048)."},
        {"next-file-has-long.tar",
         "Cannot extract 'longlink' from archive file 'A': it is a symbolic link; links are never "
         "written (at byte 3072)."},
        {"test_compat_gtar_1.tar",
         "Cannot extract 'abcdefghij..' from archive file 'A': it is a symbolic link; links are "
         "never written (at byte 3584)."},
        {"test_empty.zst",
         "'A' is not a valid archive file.\nDecompressed, it is shorter than one header."},
        {"test_expand.zst",
         "'A' is not a valid archive file.\nDecompressed, it is shorter than one header."},
    };
    const QRegularExpression manyLetters("(abcdefghij){2,}");
    QFileInfoList files;
    for (const char* folder : {"go-tar", "node-tar/tars", "libarchive"})
        files += QDir(data + folder).entryInfoList(QDir::Files);
    EXPECT_EQ(files.size(), 35);
    for (const QFileInfo& file : files) {
        SCOPED_TRACE(file.filePath().toStdString());
        QString path = file.filePath();
        if (file.suffix() == "tar") {
            path = at("a.tar.zst");
            runShell("zstd -q -f \"$1\" -o \"$2\"", {file.filePath(), path});
        }
        const QString fate = unpack(path, "ours", true).replace(manyLetters, "abcdefghij..");
        EXPECT_EQ(fate, refused.value(file.fileName(), "done"));
        ASSERT_TRUE(QDir(m_dir.path()).mkpath("theirs"));
        // tar applies global headers; their writers do not.
        const QString judge = file.fileName().contains("global") ? "bsdtar" : "tar";
        runShell(judge + " -C \"$1\" --no-same-owner -xf \"$2\"", {at("theirs"), path}, true);
        EXPECT_EQ(listTree(at("ours"), false),
                  fate == "done" ? listTree(at("theirs"), false) : QByteArrayList());
        fs::remove_all(at("ours").toStdString());
        fs::remove_all(at("theirs").toStdString());
    }
}
