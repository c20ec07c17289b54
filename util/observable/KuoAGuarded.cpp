#include <util/observable/KuoAGuarded.h>

#include <util/observable/KuoIUpdateModifyLock.h>

#include <algorithm>

KuoIGuard::~KuoIGuard() = default;

KuoIUpdateModifyLock::~KuoIUpdateModifyLock() = default;

KuoAGuarded::~KuoAGuarded()
{
    while (!m_guards.empty()) {
        m_guards.pop_back();
    }
}

void KuoAGuarded::addGuard(KuoIGuard* guard)
{
    const auto isHeld = [guard](const auto& held) { return held.get() == guard; };
    if (guard && std::none_of(m_guards.begin(), m_guards.end(), isHeld)) {
        m_guards.emplace_back(guard);
    }
}
