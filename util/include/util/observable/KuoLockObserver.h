#pragma once

#include <util/observable/KuoAObservable.h>

/// Keeps an observer from hearing an observable for the guard's lifetime. It observes the
/// observable itself, so that the observable may die first; the observer must outlive the guard or
/// have been removed. Null pointers make a guard that does nothing.
template <class M>
class KuoLockObserver : public KuoIObserver<M>
{
public:
    KuoLockObserver(KuoIObserver<M>* observer, KuoAObservable<M>* observable)
        : KuoLockObserver(observer, static_cast<const KuoAObservable<M>*>(observable))
    {
    }
    KuoLockObserver(KuoIObserver<M>* observer, const KuoAObservable<M>* observable)
        : m_observer(observer)
        , m_observable(observable)
    {
        if (m_observer && m_observable) {
            m_observable->addObserver(this);
            m_observable->lockObserver(m_observer, true);
        }
    }
    ~KuoLockObserver() override
    {
        if (m_observer && m_observable) {
            m_observable->lockObserver(m_observer, false);
            m_observable->removeObserver(this);
        }
        m_observer = nullptr;
        m_observable = nullptr;
    }
    KuoLockObserver(const KuoLockObserver&) = delete;
    KuoLockObserver& operator=(const KuoLockObserver&) = delete;

    void update(const M&) override {}
    void destroyed(const KuoAObservable<M>*) override { m_observable = nullptr; }

private:
    KuoIObserver<M>* m_observer;
    const KuoAObservable<M>* m_observable;
};
