#pragma once

#include <util/system/KusArchive.h>

/// What the parts of an archive's task tell of their progress, and ask.
class KusArchiveProgress
{
public:
    explicit KusArchiveProgress(KusArchive& task)
        : m_task(task)
    {
    }

    /// Throws when a cancel is requested.
    void check() const { m_task.checkCancelled(); }
    void start(qint64 total) { m_task.initCounter(total); }
    void advance(qint64 bytes) { m_task.advance(bytes); }
    /// "Archiving", "Extracting" or "Cleaning".
    void setPhase(const QString& phase)
    {
        m_phase = phase;
        m_task.setMessage(phase);
    }
    /// The member at work, shown where the task shows names.
    void setMember(const QString& name)
    {
        if (m_task.hasVisibleProgressPaths())
            m_task.setMessage(m_phase + QLatin1String(": ") + name);
    }
    /// A member is packed, unpacked or read; the size is that of a file, 0 of a directory.
    void countMember(qint64 size)
    {
        ++m_task.m_counts.members;
        m_task.m_counts.fileSize += size;
    }
    bool showsMembers() const { return m_task.hasVisibleProgressPaths(); }
    bool ask(const QString& title, const QString& text, const QString& proposal) const
    {
        return m_task.m_question && m_task.m_question(title, text, proposal);
    }

private:
    KusArchive& m_task;
    QString m_phase;
};
