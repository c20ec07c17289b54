#pragma once

#include "KusArchiveProgress.h"

#include <util/system/KusArchiveReader.h>

#include <utility>

/// The archive's stream; every piece of it moves the progress, and looks for a cancel. Borrows
/// both.
class KusArchiveWatchedInput : public KusArchiveInput
{
public:
    KusArchiveWatchedInput(KusArchiveReader& archive, KusArchiveProgress& progress)
        : m_archive(archive)
        , m_progress(progress)
    {
        m_archive.setCheck([&progress] { progress.check(); });
    }

protected:
    HbdSpan<const char> _next(int most) override
    {
        m_progress.check();
        const HbdSpan<const char> bytes = m_archive.next(most);
        const qint64 readSize = m_archive.getReadSize();
        if (readSize != m_readSize)
            m_progress.advance(readSize - std::exchange(m_readSize, readSize));
        return bytes;
    }

private:
    KusArchiveReader& m_archive;
    KusArchiveProgress& m_progress;
    qint64 m_readSize = 0;
};
