#pragma once

template <class M>
class KuoAObservable;

/// Hears the modification notices of type M of the observables it was added to.
///
/// The observable borrows its observers: an observer removes itself before it dies. All calls come
/// synchronously, on the thread of whoever changed the observable.
template <class M>
class KuoIObserver
{
public:
    /// Something changed. The notice lives as long as the call; copy it to keep it. Inside, the
    /// observer may add and remove observers, lock, notify again, even destroy the observable.
    virtual void update(const M& notice) = 0;

    /// The observable is being destroyed: only its address is still of use.
    virtual void destroyed(const KuoAObservable<M>* observable);

protected:
    KuoIObserver() = default;
    KuoIObserver(const KuoIObserver&) = default;
    KuoIObserver& operator=(const KuoIObserver&) = default;
    virtual ~KuoIObserver() = default;
};

template <class M>
void KuoIObserver<M>::destroyed(const KuoAObservable<M>*)
{
}
