#pragma once

#include <util/observable/KuoAObservable.h>

/// Folds all that an observable notifies in a scope into one notice. `send` delivers it; a scope
/// that is left by an exception gives the lock back and leaves what was folded pending. Nested
/// scopes, and an observable that was locked before, deliver when the outermost lock goes.
template <class M>
class KuoOneNotice
{
public:
    explicit KuoOneNotice(const KuoAObservable<M>& observable)
        : m_observable(observable)
        , m_wasLocked(observable.lock(true))
    {
    }
    KuoOneNotice(const KuoOneNotice&) = delete;
    KuoOneNotice& operator=(const KuoOneNotice&) = delete;
    ~KuoOneNotice()
    {
        if (!m_isSent)
            m_observable.lock(m_wasLocked);
    }

    /// Once, at the end. Not left to the destructor, because an observer may throw, or destroy the
    /// observable.
    void send()
    {
        m_isSent = true;
        m_observable.lock(m_wasLocked);
        if (!m_wasLocked)
            m_observable.commit();
    }

private:
    const KuoAObservable<M>& m_observable;
    bool m_wasLocked;
    bool m_isSent = false;
};
