#pragma once

#include <basic/error/HbeError.h>

/// A file-system operation failed.
class KELVANE_BASIC_EXPORT HbeDiskError : public HbeError
{
public:
    using HbeError::HbeError;
    ~HbeDiskError() override;
};
