#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

class KusSafeFile;

/// The bytes of an XML file, with the errors of KuxXml::readXml and KuxXml::saveXml. A small file
/// is read into memory; a large one is mapped, so that refusing it costs no memory (it must not be
/// truncated meanwhile; KusSafeFile never does that).
class KuxXmlFile
{
public:
    explicit KuxXmlFile(const QString& path);

    const char* begin() const { return m_begin; }
    qint64 size() const { return m_size; }

    /// Replaces a file as a whole.
    static void write(const QString& path, const QByteArray& bytes);
    /// The errors; the system's reason goes to the warnings.
    [[noreturn]] static void failOpening(const KusSafeFile& file, const QString& path);
    [[noreturn]] static void failWriting(const KusSafeFile& file, const QString& path);

private:
    void repairLegacy(const QString& path);

    QFile m_file;
    QByteArray m_bytes;
    const char* m_begin = nullptr;
    qint64 m_size = 0;
};
