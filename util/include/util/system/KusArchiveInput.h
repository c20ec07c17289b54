#pragma once

#include <util/KuExport.h>

#include <basic/data/HbdSpan.h>

#include <QtCore/QtGlobal>

/// Bytes that come one after the other: what a tar stream is read from. Read by one thread.
class KELVANE_UTIL_EXPORT KusArchiveInput
{
public:
    virtual ~KusArchiveInput();

    /// The next bytes: at least one and at most `most`, none at the end of the stream. They stand
    /// where the input has them, until the next call.
    HbdSpan<const char> next(int most) { return most > 0 ? _next(most) : HbdSpan<const char>(); }

    /// Copies the next `size` bytes, fewer only at the end of the stream, and answers how many.
    qint64 read(char* data, qint64 size);
    /// Passes over the next `size` bytes and answers how many there were.
    qint64 skip(qint64 size);

protected:
    KusArchiveInput() = default;
    KusArchiveInput(const KusArchiveInput&) = default;
    KusArchiveInput& operator=(const KusArchiveInput&) = default;

    virtual HbdSpan<const char> _next(int most) = 0;
};
