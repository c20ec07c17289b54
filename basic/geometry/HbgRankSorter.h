#pragma once

#include <vector>

/// Sorts the ranks that a search through a spatial index found: distinct, not negative, and mostly
/// in ascending runs, one of each leaf. Several times faster than std::sort on those.
class HbgRankSorter
{
public:
    static void sort(std::vector<int>& ranks);
};
