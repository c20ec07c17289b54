#pragma once

#include <basic/base/HbbDebug.h>

#include <QtCore/QStringList>

#include <mutex>

/// Takes what is printed while it lives, from any thread.
class CapturedLog
{
public:
    CapturedLog()
        : m_former(HbbDebug::setSink([this](HbbDebug::Level, const QString& message) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            texts.append(message);
        }))
    {
    }
    ~CapturedLog() { HbbDebug::setSink(m_former); }

    QStringList texts;

private:
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    std::mutex m_mutex;
    HbbDebug::Sink m_former;
};
