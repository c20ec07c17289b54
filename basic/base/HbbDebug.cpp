#include <basic/base/HbbDebug.h>

#include <cstdio>
#include <mutex>

namespace
{
void writeToStderr(HbbDebug::Level level, const QString& message)
{
    const QByteArray text = message.toUtf8();
    std::fprintf(stderr, "%s%s%s", level == HbbDebug::Level::WARNING ? "warning: " : "",
                 text.constData(), text.endsWith('\n') ? "" : "\n");
}

std::mutex& sinkMutex()
{
    static std::mutex mutex;
    return mutex;
}

HbbDebug::Sink& currentSink()
{
    static HbbDebug::Sink sink;
    return sink;
}

void deliver(HbbDebug::Level level, const QString& message)
{
    // Called outside of the lock: a sink may print, or replace itself.
    HbbDebug::Sink sink;
    {
        const std::lock_guard<std::mutex> lock(sinkMutex());
        sink = currentSink();
    }
    if (sink)
        sink(level, message);
    else
        writeToStderr(level, message);
}
} // namespace

void HbbDebug::print(const QString& message)
{
    deliver(Level::DEBUG, message);
}

void HbbDebug::printWarning(const QString& message)
{
    deliver(Level::WARNING, message);
}

HbbDebug::Sink HbbDebug::setSink(Sink sink)
{
    const std::lock_guard<std::mutex> lock(sinkMutex());
    std::swap(sink, currentSink());
    return sink;
}
