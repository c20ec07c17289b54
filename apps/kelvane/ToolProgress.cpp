#include "ToolProgress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace
{
constexpr qint64 FIRST_MILLISECONDS = 500;
constexpr qint64 STEP_MILLISECONDS = 100;
constexpr int BAR_LENGTH = 30;
constexpr char CLEAR_LINE[] = "\r\033[K";
} // namespace

ToolProgress::ToolProgress(const QString& title)
    : m_title(title)
    , m_nextShow(FIRST_MILLISECONDS)
    , m_isTerminal(isatty(STDERR_FILENO) != 0)
{
    m_sinceStart.start();
}

ToolProgress::~ToolProgress()
{
    if (m_isShown)
        std::fputs(CLEAR_LINE, stderr);
}

void ToolProgress::show(qint64 done, qint64 total)
{
    if (!m_isTerminal || m_sinceStart.elapsed() < m_nextShow)
        return;
    m_nextShow = m_sinceStart.elapsed() + STEP_MILLISECONDS;
    m_isShown = true;

    QString line = QLatin1String(CLEAR_LINE) + m_title;
    if (total > 0) {
        const double share =
            std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0);
        const int filled = static_cast<int>(share * BAR_LENGTH);
        line += QStringLiteral(" [%1%2] %3 %")
                    .arg(QString(filled, QLatin1Char('#')),
                         QString(BAR_LENGTH - filled, QLatin1Char('.')))
                    .arg(static_cast<int>(share * 100), 3);
    }
    std::fputs(line.toUtf8().constData(), stderr);
    std::fflush(stderr);
}
