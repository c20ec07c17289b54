#include <util/system/KusArchive.h>

#include "FileBytes.h"
#include "PythonRun.h"

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
using ExistingFile = KusArchive::ExistingFile;
constexpr unsigned NOBODY = 65534;

/// Every entry with its kind, permissions, time in nanoseconds, content or link text.
QStringList describe(const QString& directory)
{
    namespace fs = std::filesystem;
    const fs::path root(directory.toStdString());
    QStringList lines;
    const auto add = [&](const fs::path& path) {
        struct stat facts = {};
        EXPECT_EQ(::lstat(path.c_str(), &facts), 0) << path;
        QString line = QString::fromStdString(path.lexically_relative(root).string()) +
                       QString(" %1 ").arg(facts.st_mode, 0, 8);
        if (S_ISLNK(facts.st_mode))
            line += QString::fromStdString(fs::read_symlink(path).string());
        else
            line += QString("%1.%2").arg(facts.st_mtim.tv_sec).arg(facts.st_mtim.tv_nsec);
        if (S_ISREG(facts.st_mode))
            line += ' ' + QString::number(qHash(readBytes(QString::fromStdString(path.string()))));
        lines.append(line);
    };
    add(root);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root))
        add(entry.path());
    lines.sort();
    return lines;
}

/// Root may do everything: what others must not is tried as somebody else.
class WithoutRoot
{
public:
    explicit WithoutRoot(const QString& directory)
        : m_wasRoot(::geteuid() == 0)
    {
        if (m_wasRoot) {
            EXPECT_EQ(std::system(qPrintable("chown -R 65534:65534 " + directory)), 0);
            EXPECT_TRUE(::setegid(NOBODY) == 0 && ::seteuid(NOBODY) == 0);
        }
    }
    ~WithoutRoot() { EXPECT_TRUE(!m_wasRoot || (::seteuid(0) == 0 && ::setegid(0) == 0)); }

private:
    bool m_wasRoot;
};

class KusArchiveExtractorTest : public testing::Test
{
protected:
    void SetUp() override
    {
        REQUIRE_PYTHON();
        info.readOtherTools = true;
        ASSERT_TRUE(QDir(m_dir.path()).mkpath("target"));
        ::chmod(qPrintable(m_dir.path()), 0755); // for WithoutRoot
    }
    void TearDown() override
    {
        EXPECT_EQ(std::system(qPrintable("chmod -R u+rwx " + m_dir.path())), 0);
    }

    QString at(const QString& path) const { return m_dir.filePath(path); }

    /// A name each, with "/" at the end a directory; a file holds its own name in capitals, or
    /// what stands behind "=".
    QString pack(const QStringList& members)
    {
        runPython("import io, sys, tarfile\n"
                  "with tarfile.open(sys.argv[1], 'w:gz', format=tarfile.GNU_FORMAT) as archive:\n"
                  "    for name in sys.argv[2:]:\n"
                  "        name, _, data = name.partition('=')\n"
                  "        member = tarfile.TarInfo(name.rstrip('/'))\n"
                  "        member.mtime = 1000000000\n"
                  "        data = (data or name.upper()).encode()\n"
                  "        if name.endswith('/'):\n"
                  "            member.type, member.mode = tarfile.DIRTYPE, 0o755\n"
                  "        else:\n"
                  "            member.size = len(data)\n"
                  "        archive.addfile(member, io.BytesIO(data))\n",
                  QStringList{at("a.tar.gz")} + members);
        return at("a.tar.gz");
    }

    /// The error's text; empty when there is none.
    QString unpack(const QString& archive)
    {
        KusArchive task(archive);
        task.setExtractOperation(at("target"), info);
        task.setQuestion(question);
        QObject::connect(&task, &KusArchive::messageChanged,
                         [&](const QString& message) { messages.append(message); });
        const bool done = task.runInCurrentThread();
        EXPECT_EQ(done, task.getErrorText().isEmpty());
        EXPECT_TRUE(!done || task.getCounter() == task.getTotal());
        return task.getErrorText();
    }
    QString targetText(const QString& path) const { return at("target/" + path); }

    KusArchive::ExtractInfo info;
    KusArchive::Question question;
    QStringList messages;
    QTemporaryDir m_dir;
};
} // namespace

TEST_F(KusArchiveExtractorTest, BringsBackWhatOtherToolsPacked)
{
    runPython("import os, sys\n"
              "os.chdir(sys.argv[1]); os.umask(0)\n"
              "def write(path, data, mode, time):\n"
              "    os.makedirs(os.path.dirname(path), exist_ok=True)\n"
              "    with open(path, 'wb') as file: file.write(data)\n"
              "    os.chmod(path, mode); os.utime(path, (time, time))\n"
              "for size in 0, 511, 512, 513, 3000001:\n"
              "    write('source/sizes/%d' % size, os.urandom(size), 0o600 + size % 64, size)\n"
              "write('source/locked/below/script.sh', b'run', 0o555, 1234567890)\n"
              "write('source/\\u00e9\\u4e2d/.hidden', b'hidden', 0o000, 1)\n"
              "write('source/' + 'd/' * 150 + ('e' * 250 + '/') * 13 + 'n' * 255, b'deep', 0o644, "
              "4102444800)\n"
              "os.makedirs('source/empty')\n"
              "for i, (path, _, _) in enumerate(os.walk('source', topdown=False)):\n"
              "    os.chmod(path, 0o555 if 'locked' in path else 0o700 | i % 64)\n"
              "    os.utime(path, (i, 1000000 + i))\n",
              {m_dir.path()});
    const QStringList source = describe(at("source"));
    for (const QString format : {"--zstd --format=gnu", "-z --format=posix"}) {
        const QString archive = at("made.by.tar");
        ASSERT_EQ(std::system(qPrintable("tar -C " + m_dir.path() + " -cf " + archive + ' ' +
                                         format + " source")),
                  0);
        {
            const WithoutRoot user(at("target"));
            const mode_t former = ::umask(0);
            EXPECT_EQ(unpack(archive), "");
            ::umask(former);
        }
        EXPECT_EQ(describe(targetText("source")), source) << format.toStdString();
        ASSERT_EQ(std::system(
                      qPrintable("chmod -R u+rwx " + at("target") + " && rm -r " + at("target/*"))),
                  0);
    }
}

TEST_F(KusArchiveExtractorTest, MergesIntoWhatIsThereAsTheCallerWants)
{
    const QString archive = pack({"survey/a.txt", "survey/a.txt=second", "survey/b.txt",
                                  "survey/sub/", "survey/sub/c.txt", "./survey//new/d.txt"});
    const QString exists = QString("File '%1' already exists.").arg(targetText("survey/a.txt"));
    const QByteArray first = "SURVEY/A.TXT";
    const struct {
        const char* name;
        ExistingFile policy;
        bool answer;
        QString error;
        QByteArray former; // "survey/a.txt" of the target; empty: there is none
        QByteArray expected;
        int questions;
    } rows[] = {
        {"asked, skipping", ExistingFile::ASK, true, "", "old", "old", 2},
        {"asked, giving up", ExistingFile::ASK, false, exists, "old", "old", 1},
        {"skipping", ExistingFile::SKIP, false, "", "old", "old", 0},
        {"replacing", ExistingFile::REPLACE, false, "", "old", "second", 0},
        {"the second of the archive, asked", ExistingFile::ASK, true, "", "", first, 1},
        {"the second of the archive, refused", ExistingFile::ASK, false, exists, "", "no file", 1},
        {"the second of the archive, skipped", ExistingFile::SKIP, false, "", "", first, 0},
        {"the second of the archive, taken", ExistingFile::REPLACE, false, "", "", "second", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(QDir(at("target")).removeRecursively());
        writeBytes(targetText("survey/kept.txt"), "kept");
        writeBytes(targetText("survey/sub/kept.txt"), "kept");
        if (!row.former.isEmpty())
            writeBytes(targetText("survey/a.txt"), row.former);
        ASSERT_EQ(std::system(qPrintable("chmod 0731 " + targetText("survey/sub") +
                                         " && touch -d 2001-02-03 " + targetText("survey/sub"))),
                  0);
        const QStringList before = describe(at("target"));
        int questions = 0;
        question = [&](const QString& title, const QString& text, const QString& proposal) {
            EXPECT_EQ(title, "File already exists");
            EXPECT_EQ(text, exists);
            EXPECT_EQ(proposal, "Do you want to skip it and continue extracting?");
            ++questions;
            return row.answer;
        };
        info.existingFile = row.policy;
        EXPECT_EQ(unpack(archive), row.error);
        EXPECT_EQ(questions, row.questions);
        EXPECT_EQ(readBytes(targetText("survey/a.txt")), row.expected);
        const QStringList after = describe(at("target"));
        if (!row.error.isEmpty()) {
            EXPECT_EQ(after, before);
            continue;
        }
        EXPECT_EQ(readBytes(targetText("survey/new/d.txt")), "./SURVEY//NEW/D.TXT");
        for (const QString& line : before) // but for the target, which has a new time
            EXPECT_TRUE(after.contains(line) || line.startsWith('.') || line.contains("/a.txt"))
                << line.toStdString();
        EXPECT_EQ(after.size(), before.size() + 4 + (row.former.isEmpty() ? 1 : 0));
    }
}

TEST_F(KusArchiveExtractorTest, LeavesTheTargetAsItWasWhateverIsWrong)
{
    const auto withInformation = [](qint64 size) {
        return "qm_archive_info=uncompressed-size = " + QByteArray::number(size).toBase64() + '\n';
    };
    const QString a = targetText("survey/a"), d = targetText("survey/d");
    const struct {
        const char* name;
        QStringList members;
        QString error; // a part of it
        std::function<void(KusArchive::ExtractInfo&)> prepare = nullptr;
    } rows[] = {
        {"a file where a directory is",
         {"survey/x", "survey/d"},
         "Cannot create file '" + d + "'."},
        {"a directory where a file is",
         {"survey/x", "survey/a/"},
         "Cannot create directory '" + a + "'."},
        {"a pattern without use",
         {"n/x", "n/y"},
         "No member of archive file '" + at("a.tar.gz") + "' matches 'z*'.",
         [](auto& i) {
             i.included = QStringList{"x", "z*"};
         }},
        {"another project",
         {withInformation(9), "n/x"},
         "has '9' for 'uncompressed-size', not '8'.",
         [](auto& i) { i.header.insert(KusArchive::HeaderFieldSize, 8); }},
        {"no room",
         {withInformation(qint64(1) << 60), "n/x"},
         "(uncompressed size = 1.00 EiB).\nMissing 1"},
        {"wrong content", {"n/x", "n/y", "damaged"}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(QDir(at("target")).removeRecursively());
        writeBytes(a, "old");
        ASSERT_TRUE(QDir().mkpath(d));
        const QStringList before = describe(at("target"));
        info = {};
        info.readOtherTools = true;
        info.existingFile = ExistingFile::REPLACE;
        if (row.prepare)
            row.prepare(info);
        const QString archive = pack(row.members);
        if (row.members.last() == "damaged") { // the checksum, which comes last
            QByteArray bytes = readBytes(archive);
            bytes[bytes.size() - 6] = char(bytes[bytes.size() - 6] ^ 1);
            writeBytes(archive, bytes);
        }
        const QString error = unpack(archive);
        EXPECT_THAT(error.toStdString(), testing::HasSubstr(row.error.toStdString()));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_EQ(describe(at("target")), before);
    }
    EXPECT_EQ(messages.last(), "Cleaning");
}

TEST_F(KusArchiveExtractorTest, MovesEverythingBackWhenOneMemberFindsNoPlace)
{
    for (const char* name : {"a.txt", "sub/b.txt", "sub/closed/c.txt"})
        writeBytes(targetText(name), "old");
    runPython("import os, sys\nos.chdir(sys.argv[1])\n"
              "for path, _, files in os.walk('.'):\n"
              "    for name in files + ['']: os.utime(os.path.join(path, name), (5, 1000000))\n",
              {at("target")});
    const QString archive = pack({"a.txt", "new.txt", "locked/", "locked/x", "sub/b.txt",
                                  "sub/new/x", "sub/closed/c.txt", "sub/closed/new/x"});
    info.existingFile = ExistingFile::REPLACE;
    const WithoutRoot user(at("target"));
    ASSERT_EQ(::chmod(qPrintable(targetText("sub/closed")), 0555), 0);
    const QStringList before = describe(at("target"));
    EXPECT_THAT(unpack(archive).toStdString(), testing::HasSubstr("Permission denied"));
    EXPECT_EQ(describe(at("target")), before);

    ASSERT_EQ(::chmod(qPrintable(targetText("sub/closed")), 0755), 0);
    EXPECT_EQ(unpack(archive), "");
    EXPECT_EQ(readBytes(targetText("sub/closed/c.txt")), "SUB/CLOSED/C.TXT");
    EXPECT_EQ(readBytes(targetText("sub/closed/new/x")), "SUB/CLOSED/NEW/X");
    EXPECT_EQ(describe(at("target")).size(), before.size() + 7);
}

TEST_F(KusArchiveExtractorTest, ACancelIsSeenAtTheNextMemberAndLeavesNothing)
{
    const QString archive = pack({"n/a", "n/b", "n/c", "n/d"});
    writeBytes(targetText("kept"), "kept");
    const QStringList before = describe(at("target"));
    KusArchive task(archive);
    task.setExtractOperation(at("target"), info);
    task.setVisibleProgressPaths(true);
    QObject::connect(&task, &KusArchive::messageChanged, [&](const QString& message) {
        messages.append(message);
        if (message == "Extracting: n/b") {
            EXPECT_GT(describe(at("target")).size(), before.size());
            task.requestCancel();
        }
    });
    EXPECT_FALSE(task.runInCurrentThread());
    EXPECT_EQ(task.getOutcome(), HbcAProgress::Outcome::CANCELLED);
    EXPECT_EQ(messages,
              (QStringList{"Extracting", "Extracting: n/a", "Extracting: n/b", "Cleaning"}));
    EXPECT_EQ(describe(at("target")), before);
}

TEST_F(KusArchiveExtractorTest, TakesOnlyWhatPatternsNameAndNamesOfOtherCaseWhenTold)
{
    const QString archive = pack({"s/", "s/a.txt", "s/A.TXT", "s/b.bin", "s/dir/x/y", "t/a.txt"});
    info.included = QStringList{"/s/*.txt", "dir", "[Ax].TXT"};
    EXPECT_THAT(unpack(archive).toStdString(), testing::HasSubstr("'s/A.TXT'"));
    info.caseSensitive = true;
    EXPECT_EQ(unpack(archive), "");
    QStringList names;
    for (const QString& line : describe(at("target")))
        names.append(line.section(' ', 0, 0));
    EXPECT_EQ(names,
              (QStringList{".", "s", "s/A.TXT", "s/a.txt", "s/dir", "s/dir/x", "s/dir/x/y"}));
}

TEST_F(KusArchiveExtractorTest, RefusesATargetThatCannotTakeIt)
{
    const QString archive = pack({"x"});
    const QString target = at("target");
    ASSERT_TRUE(QDir(target).removeRecursively());
    EXPECT_EQ(unpack(archive), "'" + target + "' is not a valid directory.");
    writeBytes(target);
    EXPECT_EQ(unpack(archive), "'" + target + "' is not a valid directory.");
    ASSERT_TRUE(QFile::remove(target) && QDir().mkpath(target));
    const WithoutRoot user(target);
    ASSERT_EQ(::chmod(qPrintable(target), 0555), 0);
    EXPECT_EQ(unpack(archive).section('\n', 0, 0),
              "You do not have the right to write into '" + target + "'.");
}
