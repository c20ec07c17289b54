#include <util/system/ArchiveZstdWriter.h>
#include <util/system/KusArchive.h>
#include <util/system/KusArchiveInformation.h>
#include <util/system/KusTarReader.h>

#include "FileBytes.h"
#include "TarBuilder.h"

namespace
{
QByteArray member(const QByteArray& name, const QByteArray& data)
{
    return TarBuilder().file(name, data).bytes();
}

struct Archive {
    const char* name;
    QByteArray bytes;
    QStringList faults;
};
} // namespace

TEST(KusArchiveVerifierTest, NotesWhatIsWrong)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.tar.zst");
    const QByteArray end(1024, '\0');
    const QByteArray directory = TarBuilder().directory("d").bytes();
    const QByteArray a = member("a", "abc");
    const QByteArray announcing = member(KusTarReader::INFORMATION_NAME,
                                         KusArchiveInformation::encode({{"uncompressed-size", 3}}));
    QByteArray wrong = a;
    wrong.replace(148, 6, "000000");
    const std::vector<Archive> rows{
        {"nothing", announcing + directory + member("d/a", "abc") + end, {}},
        {"a directory twice", directory + TarBuilder().directory("./d").bytes() + end, {}},
        {"checksums", wrong + end, {"'a' at byte 0: The checksum of its header is wrong."}},
        {"a name",
         a + member("../b", "") + end,
         {"'../b' at byte 1024: Its name leads upwards with \"..\"."}},
        {"twice",
         a + member("./a", "abcd") + end,
         {"'./a' at byte 1024: An earlier member has its name."}},
        {"case, of a directory",
         member("D/a", "") + member("d/b", "") + end,
         {"'d/b' at byte 512: Its name differs only in case, or in how letters are composed, from "
          "that of an earlier member."}},
        {"less than announced",
         announcing + end,
         {"The files have 0 bytes; the archive announces 3."}},
        {"no end", a, {"The two blocks that close an archive are missing."}},
        {"something behind",
         a + end + "abc",
         {"Something that is no part of the archive stands behind its end."}},
        {"two faults, the last of which ends it",
         wrong + a.left(513),
         {"'a' at byte 0: The checksum of its header is wrong.",
          "'a' at byte 1024: An earlier member has its name.",
          "Cannot extract 'a' because archive file '" + path +
              "' is corrupted.\nThe archive ends at byte 1537, within its data."}},
    };
    for (const Archive& row : rows) {
        ArchiveZstdWriter writer(path);
        writer.open();
        EXPECT_TRUE(writer.write(row.bytes.constData(), row.bytes.size()) && writer.close());
        KusArchive archive(path);
        archive.setVerifyOperation(KusArchive::ExtractInfo());
        EXPECT_TRUE(archive.runInCurrentThread()) << qPrintable(archive.getErrorText());
        EXPECT_EQ(archive.getVerification().faults, row.faults) << row.name;
        EXPECT_EQ(archive.getCounter(), QFileInfo(path).size()) << row.name;
    }
}

TEST(KusArchiveVerifierTest, NotesDamageAndSeesACancel)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.tar.zst");
    ArchiveZstdWriter writer(path);
    writer.open();
    const QByteArray bytes = member("a", QByteArray(5000, 'a')) + QByteArray(1024, '\0');
    EXPECT_TRUE(writer.write(bytes.constData(), bytes.size()) && writer.close());
    KusArchive archive(path);
    archive.setVerifyOperation(KusArchive::ExtractInfo());
    EXPECT_TRUE(archive.runInCurrentThread());
    EXPECT_EQ(archive.getVerification().memberCount, 1);
    EXPECT_EQ(archive.getVerification().fileSize, 5000);
    EXPECT_TRUE(archive.getVerification().hasChecksum);

    archive.requestCancel();
    EXPECT_FALSE(archive.runInCurrentThread());
    EXPECT_EQ(archive.getOutcome(), KusArchive::Outcome::CANCELLED);

    QByteArray damaged = readBytes(path);
    damaged[damaged.size() - 1] = char(~damaged.back()); // of the checksum
    writeBytes(path, damaged);
    EXPECT_TRUE(archive.runInCurrentThread());
    EXPECT_EQ(archive.getVerification().faults.size(), 1);
    EXPECT_FALSE(archive.getVerification().hasChecksum);
}
