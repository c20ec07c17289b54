#include "CapturedLog.h"
#include "FileBytes.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/calc/HbcCancelled.h>
#include <basic/error/HbeUserError.h>

namespace
{
class KudDatasetDirectoryTest : public testing::Test
{
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    void write(const QString& name, const QByteArray& bytes) const
    {
        writeBytes(path(name), bytes);
    }

    QTemporaryDir m_folder;
};

TEST_F(KudDatasetDirectoryTest, datasetsComeBackUnderTheirNames)
{
    const KudDatasetDirectory directory(path("deep/er"));
    EXPECT_THROW(directory.getIds(), HbeUserError);
    // Names that XML and its white space rules could harm, or a quick look could miss.
    const QStringList names = {"plain",       " two  words ", "a<b>&\"c\"",    "Zürich – 鉱",
                               "tab\tinside", "line\nbreak",  "<name>x</name>"};
    for (const QString& name : names)
        directory.save(KudMemoryDatasetPoint(name));
    EXPECT_EQ(directory.getIds().size(), names.size());
    for (const QString& name : names) {
        const KuuId id = directory.findName(name);
        ASSERT_TRUE(id.isValid()) << name.toStdString();
        EXPECT_EQ(directory.read(id)->getName(), name);
        EXPECT_EQ(directory.read(id)->getId(), id.getUuid());
    }
    EXPECT_FALSE(directory.findName("Plain").isValid());
}

TEST_F(KudDatasetDirectoryTest, savingUnderAnIdentityReplaces)
{
    const KudDatasetDirectory directory(m_folder.path());
    directory.save(KudMemoryDatasetPoint("old"));
    const KuuId id = directory.findName("old");
    const KudMemoryDatasetPoint newer("new");
    directory.save(newer, id);
    EXPECT_EQ(directory.getIds(), QList<KuuId>{id});
    EXPECT_EQ(directory.read(id)->getName(), "new");

    directory.save(newer); // a second one of the name
    EXPECT_THROW(directory.findName("new"), HbeUserError);
    const auto files = directory.check();
    ASSERT_EQ(files.size(), 2u);
    EXPECT_TRUE(files[0].errors.isEmpty());
    EXPECT_TRUE(files[1].errors.join(' ').contains(files[0].fileName));
}

TEST_F(KudDatasetDirectoryTest, aSaveThatFailsLeavesNoDirectory)
{
    write("file", "in the way");
    EXPECT_THROW(KudDatasetDirectory(path("file/p")).save(KudMemoryDatasetPoint("d")), HbeError);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{"file"});
}

TEST_F(KudDatasetDirectoryTest, checkJudgesEachFileOnItsOwn)
{
    const KudDatasetDirectory directory(m_folder.path());
    const KudMemoryDatasetPoint dataset("d");
    KuuMemento memento = dataset.getMemento();
    const KuuId ids[] = {KuuId::generate("Dataset"), KuuId::generate("Style")};
    directory.save(dataset);

    // Newer than we know: read, with a warning. Another relation: only read.
    memento.setVersion(9999);
    memento.setField("name", "newer");
    KuxXmlMementoFile::save(QDir(m_folder.path()), KuuMemento(ids[0], memento));
    KuxXmlMementoFile::save(QDir(m_folder.path()), KuuMemento(ids[1]));
    write("notes.xml", "<a/>");
    write("dataset_none.xml", "<a/>");
    const QString moved = "dataset_00000000-0000-0000-0000-000000000001.xml";
    QFile::copy(path(KuxXmlMementoFile::getFileName(ids[1])), path(moved));

    const CapturedLog printed;
    const auto files = directory.check();
    EXPECT_EQ(printed.texts, QStringList());
    ASSERT_EQ(files.size(), 6u);
    for (const auto& file : files) {
        const QString& name = file.fileName;
        EXPECT_EQ(file.isMemento, name != "notes.xml" && name != "dataset_none.xml");
        EXPECT_EQ(file.errors.isEmpty(), name != moved) << name.toStdString();
        EXPECT_EQ(file.warnings.isEmpty(), file.name != "newer");
    }
    EXPECT_THROW(directory.check([](int done, int) { return done < 3; }), HbcCancelled);
}
} // namespace
