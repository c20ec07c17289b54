#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

class KufISampleFilter;

/// The combination that a filter starts from: all rules, "R1 and R2 and R3". Empty without a filter
/// or without rules.
class KELVANE_UTIL_EXPORT KufSampleFilterDefaultCombination
{
public:
    /// The filter is borrowed and may be null.
    explicit KufSampleFilterDefaultCombination(const KufISampleFilter* filter);

    QString getCombination() const { return _checkCombination(); }
    QString _checkCombination() const;

private:
    const KufISampleFilter* m_filter;
};
