#pragma once

#include <basic/error/HbeError.h>

/// Ends a job whose cancellation was requested; see HbcAProgress::checkCancelled.
class KELVANE_BASIC_EXPORT HbcCancelled : public HbeError
{
public:
    HbcCancelled();
    ~HbcCancelled() override;
};
