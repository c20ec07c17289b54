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
              "write('source/' + 'deep/' * 60 + 'n' * 255, b'deep', 0o644, 4102444800)\n"
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
