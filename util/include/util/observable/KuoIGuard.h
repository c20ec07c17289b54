#pragma once

#include <util/KuExport.h>

/// Something that holds while it lives: a lock, a borrowing, a suspended update. What it guards
/// ends with its destructor.
class KELVANE_UTIL_EXPORT KuoIGuard
{
public:
    virtual ~KuoIGuard();

protected:
    KuoIGuard() = default;
    KuoIGuard(const KuoIGuard&) = default;
    KuoIGuard& operator=(const KuoIGuard&) = default;
};
