#pragma once

#include <util/KuExport.h>
#include <util/observable/KuoIGuard.h>

#include <memory>
#include <vector>

/// An object that keeps guards alive as long as itself. The guards are its own: they are destroyed
/// with it, the last one added first.
class KELVANE_UTIL_EXPORT KuoAGuarded
{
public:
    virtual ~KuoAGuarded();

    /// Takes ownership. Ignores null and a guard that it holds already.
    void addGuard(KuoIGuard* guard);

protected:
    KuoAGuarded() = default;
    KuoAGuarded(const KuoAGuarded&) = delete;
    KuoAGuarded& operator=(const KuoAGuarded&) = delete;

private:
    std::vector<std::unique_ptr<KuoIGuard>> m_guards;
};
