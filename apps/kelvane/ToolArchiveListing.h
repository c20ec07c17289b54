#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>

#include <memory>

class KusTarReader;

/// The members of an archive as lines for people, or as one JSON document. They go out while the
/// archive is read: a long listing begins at once, and takes no memory.
class ToolArchiveListing
{
public:
    static std::unique_ptr<ToolArchiveListing> create(const QString& archivePath, bool isJson);
    virtual ~ToolArchiveListing() = default;

    /// The present member.
    void add(const KusTarReader& tar);
    /// The last words; the error says why the listing is cut short, and is empty when it is not.
    void end(const QString& error);

protected:
    ToolArchiveListing() { m_sinceWrite.start(); }

    qint64 memberCount() const { return m_memberCount; }
    qint64 fileSize() const { return m_fileSize; }

private:
    /// Before the first member.
    virtual QByteArray _begin() = 0;
    virtual QByteArray _member(const KusTarReader& tar) = 0;
    virtual QByteArray _end(const QString& error) = 0;
    void write();

    QByteArray m_text;
    QElapsedTimer m_sinceWrite;
    qint64 m_memberCount = 0;
    qint64 m_fileSize = 0;
};
