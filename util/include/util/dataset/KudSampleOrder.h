#pragma once

#include <util/KuExport.h>

#include <QtCore/Qt>

#include <vector>

class HbdAVariable;

/// Orders samples by the values of a column.
namespace KudSampleOrder
{
/// Sorts ranks by the values of their samples. Samples of equal values keep their order; undefined
/// values come last in either direction. Numbers and dates are compared as such, categories by
/// their label and texts as people of the user's language sort them ("B2" before "b10").
KELVANE_UTIL_EXPORT void sort(std::vector<int>& ranks, const HbdAVariable& column,
                              Qt::SortOrder order = Qt::AscendingOrder);
} // namespace KudSampleOrder
