#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <memory>

class ArchiveZstdWriter;
class KusArchiveProgress;
struct KusTarFile;

/// The tar stream on its way into an archive: members are collected in one buffer, so that small
/// files cost no call of the compression each. The counter of the task moves by the data of files;
/// a cancel is seen before each read.
///
/// A failing disk is a HbeDiskError. The writer, open, and the progress are borrowed. One thread
/// uses an object.
class KusArchiveOutput
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveOutput)

public:
    KusArchiveOutput(ArchiveZstdWriter& writer, const QString& archivePath,
                     KusArchiveProgress& progress);
    KusArchiveOutput(const KusArchiveOutput&) = delete;
    KusArchiveOutput& operator=(const KusArchiveOutput&) = delete;

    /// The header of a member, with the pax record that it needs before it.
    void addHeader(const KusTarFile& file, const QByteArray& directory);
    /// All data of the present member.
    void addData(const QByteArray& data);
    /// The same from an open file: exactly `size` bytes. Answers 0, or the system's error; -1 when
    /// the file is shorter.
    int addData(int descriptor, qint64 size);
    /// The end of the stream and of the archive.
    void close();

private:
    enum class Part { MEMBER, EXTENSION, END };

    void append(const char* data, qint64 size, Part part = Part::MEMBER);
    void pad(qint64 size);
    void flush(Part part = Part::MEMBER);
    [[noreturn]] void fail(Part part) const;

    ArchiveZstdWriter& m_writer;
    QString m_archivePath;
    KusArchiveProgress& m_progress;
    std::unique_ptr<char[]> m_buffer;
    qint64 m_used = 0;
};
