#pragma once

#include <util/KuExport.h>

#include <QtCore/Qt>

#include <vector>

class HbdAVariable;

/// Orders samples by the values of a column.
namespace KudSampleOrder
{
/// Sorts ranks, any of the column's, by the values of their samples. Samples of equal values keep
/// their order; undefined values come last in either direction. Numbers and dates are compared
/// exactly, colours by red, then green, then blue. Categories are compared by their label (a code
/// without one by its number) and texts as people of the user's locale sort them, with numbers as
/// such: "B2" before "b10"; the C locale sorts as English does.
KELVANE_UTIL_EXPORT void sort(std::vector<int>& ranks, const HbdAVariable& column,
                              Qt::SortOrder order = Qt::AscendingOrder);
} // namespace KudSampleOrder
