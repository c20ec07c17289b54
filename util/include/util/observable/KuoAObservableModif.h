#pragma once

template <class M>
class KuoAObservable;

/// Names the class that sends notices of type M: `using Observable = …;` (it may be incomplete
/// where the notice is declared).
template <class M>
struct ObservableTraits;

/// Base of every modification notice: a value that says what changed in one observable, and that
/// can be merged with a later notice of the same type.
///
/// A notice is cheap to move. Merging into a fresh notice must give the merged notice itself: the
/// observable relies on it and moves the first notice into place.
template <class M, class Traits = ObservableTraits<M>>
class KuoAObservableModif
{
public:
    virtual ~KuoAObservableModif() = default;

    /// How many elementary changes the notice carries.
    virtual int getNumberOfModif() const = 0;

    /// An empty notice is never delivered.
    virtual bool isEmpty() const;

protected:
    KuoAObservableModif() = default;
    KuoAObservableModif(const KuoAObservableModif&) = default;
    KuoAObservableModif(KuoAObservableModif&&) noexcept = default;
    KuoAObservableModif& operator=(const KuoAObservableModif&) = default;
    KuoAObservableModif& operator=(KuoAObservableModif&&) noexcept = default;

    /// The sender, borrowed; null in a fresh notice. Its class must be complete at the call.
    const typename Traits::Observable* _getObservable() const;

private:
    friend class KuoAObservable<M>;

    /// Folds a later notice into this one.
    virtual void _merge(const M& other) = 0;

    const KuoAObservable<M>* m_observable = nullptr;
};

template <class M, class Traits>
bool KuoAObservableModif<M, Traits>::isEmpty() const
{
    return getNumberOfModif() < 1;
}

template <class M, class Traits>
const typename Traits::Observable* KuoAObservableModif<M, Traits>::_getObservable() const
{
    return static_cast<const typename Traits::Observable*>(m_observable);
}
