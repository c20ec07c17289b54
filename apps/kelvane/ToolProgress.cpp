#include "ToolProgress.h"

#include "ToolText.h"

#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{
constexpr qint64 FIRST_MILLISECONDS = 500;
constexpr qint64 STEP_MILLISECONDS = 100;
constexpr int BAR_LENGTH = 30;
constexpr int USUAL_WIDTH = 80;
constexpr char CLEAR_LINE[] = "\r\033[K";

int getWidth()
{
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                           : USUAL_WIDTH;
}
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

void ToolProgress::show(qint64 done, qint64 total, const QString& atWork)
{
    if (!m_isTerminal || m_sinceStart.elapsed() < m_nextShow)
        return;
    m_nextShow = m_sinceStart.elapsed() + STEP_MILLISECONDS;
    m_isShown = true;

    QString line = m_title;
    if (total > 0) {
        const double share =
            std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0);
        const int filled = static_cast<int>(share * BAR_LENGTH);
        line += QStringLiteral(" [%1%2] %3 %")
                    .arg(QString(filled, QLatin1Char('#')),
                         QString(BAR_LENGTH - filled, QLatin1Char('.')))
                    .arg(static_cast<int>(share * 100), 3);
    }
    if (!atWork.isEmpty())
        line += QStringLiteral("  ") + atWork;
    // A line that is wrapped could not be cleared; nor could one that a name of a file ends.
    line = ToolText::cut(ToolText::makeVisible(line), getWidth() - 1);
    std::fputs((CLEAR_LINE + line.toUtf8()).constData(), stderr);
    std::fflush(stderr);
}
