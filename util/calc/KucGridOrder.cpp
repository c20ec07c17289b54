#include "KucGridOrder.h"

KucGridOrder::KucGridOrder(const HgdDataSetGrid& grid, const QList<int>& axes)
{
    const int nx = grid.getAxisLength(0);
    const int strides[] = {1, nx, nx * grid.getAxisLength(1)};
    for (int loop = 0; loop < axes.size(); ++loop) {
        const int axis = axes.at(loop);
        m_loops[std::size_t(loop)] = {axis, grid.getAxisLength(axis), strides[axis]};
    }
}
