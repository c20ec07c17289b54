#pragma once

#include <util/KuExport.h>
#include <util/observable/KuoAObservableModif.h>
#include <util/observable/KuoIObserver.h>

#include <QtCore/QString>

#include <algorithm>
#include <utility>
#include <vector>

namespace Kuo
{
/// Deliveries of one observable that may be under way when another begins.
constexpr int MAX_NESTED_DELIVERIES = 100;

/// Says that an observable dropped a notice because its deliveries nest too deeply.
KELVANE_UTIL_EXPORT void warnSuspiciousRecursion();
} // namespace Kuo

/// An object that tells its observers what changed, by notices of type M.
///
/// While `lock(true)` holds, notices are merged into one pending notice, which `commit` delivers:
///
///     const bool old = object.lock(true);
///     … any number of changes, each of which calls notify …
///     object.lock(old);
///     object.commit();
///
/// Observers are borrowed. Observing does not change the object, so all operations are const. A
/// copy has no observers, no locks and nothing pending: identity stays with the object. One thread
/// only; the locks are there against re-entry.
template <class M>
class KuoAObservable
{
public:
    /// Ignores null and an observer that is there already.
    void addObserver(KuoIObserver<M>* observer) const;
    /// The observer hears nothing more, not even the rest of a delivery that is under way.
    void removeObserver(KuoIObserver<M>* observer) const;
    /// Counted: an observer hears nothing until each of its locks is released.
    void lockObserver(KuoIObserver<M>* observer, bool lock) const;

    /// While set, notices are kept pending. Returns the flag before.
    bool lock(bool lock) const { return std::exchange(m_isLocked, lock); }
    bool isLocked() const { return m_isLocked; }
    /// While set, notices are dropped (what is pending stays). Returns the flag before.
    bool lockObservable(bool lock) const { return std::exchange(m_isObservableLocked, lock); }

    /// Sends a notice, or keeps it pending. It is lost when there is no observer.
    void notify(M notice) const;
    /// Delivers what is pending, locked or not.
    void commit() const;
    bool hasNotifications() const { return !_modif(m_pending).isEmpty(); }
    /// Forgets what is pending.
    void clearNotifications() const { m_pending = M(); }

protected:
    /// The name says in the derived class's source what is observed; it is not kept.
    explicit KuoAObservable(const QString& name){
        Q_UNUSED(name)} KuoAObservable(const KuoAObservable&)
    {
    }
    KuoAObservable& operator=(const KuoAObservable&) { return *this; }
    virtual ~KuoAObservable();

private:
    using Modif = KuoAObservableModif<M, ObservableTraits<M>>;
    class Delivery;

    static const Modif& _modif(const M& notice) { return notice; }
    static Modif& _modif(M& notice) { return notice; }
    void _send() const;
    void _deliver(const M& notice) const;
    void _compress() const;
    std::size_t _find(const KuoIObserver<M>* observer) const;

    mutable std::vector<KuoIObserver<M>*> m_observers; // null: removed, not yet compressed
    mutable M m_pending;                               // without a sender: nothing merged yet
    mutable std::vector<quint32> m_lockCounts;         // parallel to m_observers
    mutable bool m_isLocked = false;
    mutable bool m_isObservableLocked = false;
    mutable int m_depth = 0; // deliveries under way

    mutable bool m_hasVacantSlot = false;
    mutable Delivery* m_innermost = nullptr;
};

/// One delivery under way, on the stack: restores the depth however the delivery ends, and learns
/// of the end of the observable, after which nothing of it may be touched.
template <class M>
class KuoAObservable<M>::Delivery
{
public:
    explicit Delivery(const KuoAObservable& observable)
        : m_observable(&observable)
        , m_outer(std::exchange(observable.m_innermost, this))
    {
        ++observable.m_depth;
    }
    ~Delivery()
    {
        if (!m_observable) {
            return;
        }
        m_observable->m_innermost = m_outer;
        --m_observable->m_depth;
        m_observable->_compress();
    }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    bool isAlive() const { return m_observable != nullptr; }
    Delivery* abandon()
    {
        m_observable = nullptr;
        return m_outer;
    }

private:
    const KuoAObservable* m_observable;
    Delivery* m_outer;
};

template <class M>
KuoAObservable<M>::~KuoAObservable()
{
    m_isObservableLocked = true; // an observer that notifies now reaches nobody
    for (Delivery* delivery = m_innermost; delivery;) {
        delivery = delivery->abandon();
    }
    // Slots stay where they are, so an observer that a neighbour removes (and perhaps deletes) from
    // its own `destroyed` is not called any more.
    ++m_depth;
    const std::size_t count = m_observers.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (KuoIObserver<M>* observer = m_observers[i]) {
            observer->destroyed(this);
        }
    }
}

template <class M>
void KuoAObservable<M>::addObserver(KuoIObserver<M>* observer) const
{
    if (!observer || _find(observer) < m_observers.size()) {
        return;
    }
    if (m_observers.size() == m_observers.capacity()) {
        _compress(); // guards that come and go without a delivery do not let the list grow
    }
    m_lockCounts.push_back(0); // first: a count too many, after a failure, harms nobody
    m_observers.push_back(observer);
}

template <class M>
void KuoAObservable<M>::removeObserver(KuoIObserver<M>* observer) const
{
    const std::size_t slot = _find(observer);
    if (observer && slot < m_observers.size()) {
        m_observers[slot] = nullptr;
        m_hasVacantSlot = true;
    }
}

template <class M>
void KuoAObservable<M>::lockObserver(KuoIObserver<M>* observer, bool lock) const
{
    const std::size_t slot = _find(observer);
    if (!observer || slot == m_observers.size()) {
        return;
    }
    quint32& count = m_lockCounts[slot];
    if (lock) {
        ++count;
    } else if (count > 0) {
        --count;
    }
}

template <class M>
void KuoAObservable<M>::notify(M notice) const
{
    if (m_observers.empty() || m_isObservableLocked) {
        return;
    }
    _modif(notice).m_observable = this;
    const bool isFirst = !_modif(m_pending).m_observable;
    if (isFirst && !m_isLocked) {
        _deliver(notice);
        return;
    }
    if (isFirst) {
        m_pending = std::move(notice);
    } else {
        _modif(m_pending)._merge(notice);
    }
    if (!m_isLocked) {
        _send();
    }
}

template <class M>
void KuoAObservable<M>::commit() const
{
    _send();
}

template <class M>
void KuoAObservable<M>::_send() const
{
    // Taken out first, so that observers may notify again.
    const M notice = std::exchange(m_pending, M());
    if (_modif(notice).m_observable) {
        _deliver(notice);
    }
}

template <class M>
void KuoAObservable<M>::_deliver(const M& notice) const
{
    if (_modif(notice).isEmpty()) {
        return;
    }
    if (m_depth > Kuo::MAX_NESTED_DELIVERIES) {
        Kuo::warnSuspiciousRecursion();
        return;
    }
    const Delivery delivery(*this);
    const std::size_t count = m_observers.size(); // who is added meanwhile waits for the next one
    for (std::size_t i = 0; i < count && delivery.isAlive(); ++i) {
        if (m_lockCounts[i] == 0 && m_observers[i]) {
            m_observers[i]->update(notice);
        }
    }
}

template <class M>
void KuoAObservable<M>::_compress() const
{
    if (!m_hasVacantSlot || m_depth > 0) {
        return;
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_observers.size(); ++i) {
        if (m_observers[i]) {
            m_observers[kept] = m_observers[i];
            m_lockCounts[kept++] = m_lockCounts[i];
        }
    }
    m_observers.resize(kept);
    m_lockCounts.resize(kept);
    m_hasVacantSlot = false;
}

template <class M>
std::size_t KuoAObservable<M>::_find(const KuoIObserver<M>* observer) const
{
    const auto found = std::find(m_observers.begin(), m_observers.end(), observer);
    return static_cast<std::size_t>(found - m_observers.begin());
}
