#pragma once

#include <basic/error/HbeUserError.h>

/// The command line makes no sense; the message says why, with a hint where there is one.
class ToolUsageError : public HbeUserError
{
public:
    using HbeUserError::HbeUserError;
};
