#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QString>

#include <functional>

/// Warnings and debug messages of our libraries. They all pass through one sink, which writes to
/// stderr unless the application (or a test) puts another one in its place. Any thread may print.
class KELVANE_BASIC_EXPORT HbbDebug
{
public:
    enum class Level { DEBUG, WARNING };
    using Sink = std::function<void(Level, const QString&)>;

    static void print(const QString& message);
    static void printWarning(const QString& message);

    /// Replaces the sink and returns the one before; an empty sink restores stderr.
    static Sink setSink(Sink sink);
};
