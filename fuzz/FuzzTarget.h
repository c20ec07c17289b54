#pragma once

#include <basic/base/HbbDebug.h>

#include <cstdint>
#include <cstdlib>

/// Ends the run with the input that broke a promise.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// libFuzzer calls it once, before the first input: what is printed would only slow it down.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    HbbDebug::setSink([](HbbDebug::Level, const QString&) {});
    return 0;
}
