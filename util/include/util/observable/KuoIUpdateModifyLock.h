#pragma once

#include <util/KuExport.h>

/// Held by an observer while it modifies, from its own `update`, the object that it hears: whoever
/// holds one lets go by destroying it.
class KELVANE_UTIL_EXPORT KuoIUpdateModifyLock
{
public:
    virtual ~KuoIUpdateModifyLock();

protected:
    KuoIUpdateModifyLock() = default;
    KuoIUpdateModifyLock(const KuoIUpdateModifyLock&) = default;
    KuoIUpdateModifyLock& operator=(const KuoIUpdateModifyLock&) = default;
};
