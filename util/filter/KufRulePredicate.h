#pragma once

#include <QtCore/QtGlobal>

#include <functional>

class HbdAVariable;
class KufISampleFilterRule;

/// A rule made ready for a column: tests `count` samples from `first` on and writes a bit for each
/// into `words`, the first sample into the lowest bit; bits beyond the last sample are 0.
using KufRulePredicate = std::function<void(int first, int count, quint64* words)>;

/// The column is borrowed, and of a kind that the rule can test (KufSampleFilterValidator).
KufRulePredicate kufMakeRulePredicate(const KufISampleFilterRule& rule, const HbdAVariable& column);
