#pragma once

#include <geos/data/HgdDataSetGrid.h>

#include <QtCore/QList>

#include <array>

/// The cells of a grid in the order of nested loops over its axes. A position counts the cells as
/// the loops meet them; a layer is what the outermost loop does in one turn, so that the cells of
/// consecutive layers are consecutive, too.
class KucGridOrder
{
public:
    /// `axes` are those of the grid, each once, the outermost loop first.
    KucGridOrder(const HgdDataSetGrid& grid, const QList<int>& axes);

    /// An axis more than the grid has is of length 1.
    int getLength(int loop) const { return m_loops[std::size_t(loop)].length; }
    int getLayerSize() const { return getLength(1) * getLength(2); }

    /// Calls `function(rank, indices)` for the cells from position `first` below `end`; the indices
    /// are by axis, X, Y and Z.
    template <class Function>
    void forEachCell(int first, int end, Function&& function) const
    {
        std::array<int, 3> at = {first / getLayerSize(), first / getLength(2) % getLength(1),
                                 first % getLength(2)};
        for (int position = first; position < end; ++position) {
            std::array<int, 3> indices{};
            int rank = 0;
            for (std::size_t loop = 0; loop < 3; ++loop) {
                indices[std::size_t(m_loops[loop].axis)] = at[loop];
                rank += at[loop] * m_loops[loop].stride;
            }
            function(rank, indices);
            for (std::size_t loop = 2; ++at[loop] == m_loops[loop].length && loop > 0; --loop)
                at[loop] = 0;
        }
    }

private:
    struct Loop {
        int axis = 2;
        int length = 1;
        int stride = 0; // of ranks
    };

    std::array<Loop, 3> m_loops;
};
