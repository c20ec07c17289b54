#pragma once

#include <basic/error/HbeError.h>

/// What the user did or gave is wrong; the message says what, and where.
class KELVANE_BASIC_EXPORT HbeUserError : public HbeError
{
public:
    using HbeError::HbeError;
    ~HbeUserError() override;
};
