#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

/// A bar on the terminal for what takes longer than half a second; nothing where stderr is no
/// terminal. The line is cleared when the object goes.
class ToolProgress
{
public:
    explicit ToolProgress(const QString& title);
    ~ToolProgress();
    ToolProgress(const ToolProgress&) = delete;
    ToolProgress& operator=(const ToolProgress&) = delete;

    bool isTerminal() const { return m_isTerminal; }

    /// May be called as often as one likes. A total of 0 or less: the length is not known. What is
    /// at work stands behind the bar, as far as the terminal is wide.
    void show(qint64 done, qint64 total, const QString& atWork = QString());

private:
    QString m_title;
    QElapsedTimer m_sinceStart;
    qint64 m_nextShow;
    bool m_isTerminal;
    bool m_isShown = false;
};
