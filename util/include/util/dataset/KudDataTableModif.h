#pragma once

#include <util/dataset/KudTableModif.h>
#include <util/observable/KuoAObservableModif.h>

class KudADataTable;
class KudDataTableModif;

template <>
struct ObservableTraits<KudDataTableModif> {
    using Observable = KudADataTable;
};

/// What a data table tells its observers: its change set and itself.
class KELVANE_UTIL_EXPORT KudDataTableModif
    : public KuoAObservableModif<KudDataTableModif, ObservableTraits<KudDataTableModif>>
{
public:
    KudDataTableModif() = default;
    explicit KudDataTableModif(KudTableModif data);
    explicit KudDataTableModif(
        KudTableModif::Reason reason, const KudDatasetVariable& variable = KudDatasetVariable(),
        const HbiIntervalIntSmallDisjoint& ranks = HbiIntervalIntSmallDisjoint());

    /// The sender, borrowed; null in a notice that was not sent. Defined beside KudADataTable.
    const KudADataTable* dataTable() const;

    const KudTableModif& data() const { return m_data; }

    int getNumberOfModif() const override;
    bool isEmpty() const override;

private:
    void _merge(const KudDataTableModif& other) override;

    KudTableModif m_data;
};
