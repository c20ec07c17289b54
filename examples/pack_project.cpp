// Packs a directory into one file that says what it holds, reads that back, and unpacks the file
// elsewhere, telling how far it is.
//
//     pack_project
#include <util/system/KusArchive.h>

#include <basic/error/HbeError.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>

namespace
{
void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw HbeError(QString("Cannot write '%1'.").arg(path));
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A task that fails throws nothing by itself: it keeps what happened for its owner.
void run(KusArchive& task)
{
    if (!task.runInCurrentThread())
        task.rethrowError();
}

void pack()
{
    KusArchive::ArchiveInfo info;
    info.excluded = QStringList{"*.tmp"};
    info.header[KusArchive::HeaderFieldProjectName] = "The northern survey";
    info.header[KusArchive::HeaderFieldProjectPreviewView] = QByteArray("\x89PNG\r\n\x1a\n");
    KusArchive archive("survey.tar.zst");
    archive.setArchiveOperation("survey", info);
    run(archive);
}

void unpack()
{
    KusArchive::ExtractInfo info;
    info.existingFile = KusArchive::ExistingFile::REPLACE;
    KusArchive archive("survey.tar.zst");
    archive.setExtractOperation("elsewhere", info);
    // The signal comes from the thread that runs the task, which is this one.
    QObject::connect(&archive, &KusArchive::progressChanged, [](qint64 done, qint64 total) {
        std::fprintf(stderr, "%lld of %lld bytes\n", static_cast<long long>(done),
                     static_cast<long long>(total));
    });
    run(archive);
}
} // namespace

int main()
{
    try {
        QDir().mkpath("survey/report");
        QDir().mkpath("elsewhere");
        const QByteArray assays("x,y,zinc\n" + QByteArray(1 << 20, '1') + '\n');
        writeFile("survey/assays.csv", assays);
        writeFile("survey/report/notes.txt", "Drilled in spring.\n");
        writeFile("survey/draft.tmp", "of no use");

        pack();
        const QVariantMap header = KusArchive("survey.tar.zst").readHeader();
        for (auto entry = header.begin(); entry != header.end(); ++entry)
            std::printf("%s: %s\n", qPrintable(entry.key()),
                        qPrintable(entry.value().type() == QVariant::ByteArray
                                       ? QString("%1 bytes").arg(entry.value().toByteArray().size())
                                       : entry.value().toString()));
        unpack();

        const bool isWhole =
            header.value(KusArchive::HeaderFieldProjectName) == "The northern survey" &&
            readFile("elsewhere/survey/assays.csv") == assays &&
            readFile("elsewhere/survey/report/notes.txt") == "Drilled in spring.\n" &&
            !QFile::exists("elsewhere/survey/draft.tmp");
        std::printf("%s\n", isWhole ? "Everything has arrived." : "Something is missing.");
        return isWhole ? 0 : 1;
    } catch (const HbeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
