#pragma once

#include <util/filter/KufSampleFilterASTVisitor.h>

#include <util/dataset/KudDatasetVariable.h>

#include <QtCore/QBitArray>
#include <QtCore/QList>

class KudADataset;

/// The samples that pass a filter, one bit each, as KudSelector::setBitArray takes them. One pass
/// over the columns, block by block, on all cores when there are half a million samples or more;
/// ten million take about a hundredth of a second. Nobody edits the dataset meanwhile.
///
/// Each rule tests what its Python form tests (KufSampleFilterPythonVisitor); undefined values fail
/// every rule (KufISampleFilterRule). Integers and dates are compared exactly, without a detour by
/// a rounded real. A filter without rules selects all samples of the dataset's object table, or of
/// its first table.
class KELVANE_UTIL_EXPORT KufSampleFilterQBitArrayVisitor final : public KufSampleFilterASTVisitor
{
public:
    /// Evaluates the filter. All are borrowed, for the time of the call; `variables` holds one
    /// variable a rule, in rule order. User errors: a filter that is not valid
    /// (KufSampleFilterValidator), "Cannot apply filters from different supports.".
    KufSampleFilterQBitArrayVisitor(const KufISampleFilter* filter, const KudADataset* dataset,
                                    const QList<KudDatasetVariable>& variables);
    ~KufSampleFilterQBitArrayVisitor() override;

    const QBitArray& getSelection() const { return m_selection; }

private:
    void _visitRule(int index) override;
    void _visitNot() override;
    void _visitAnd() override;
    void _visitOr() override;

    struct Program;
    std::unique_ptr<Program> m_program;
    QBitArray m_selection;
};
