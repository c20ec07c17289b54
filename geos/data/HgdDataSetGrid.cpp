#include <geos/data/HgdDataSetGrid.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

namespace
{
int nodeCountOf(const HbgGeomGrid& geometry)
{
    // What does not fit is the undefined count, which is negative, or too large.
    const qint64 count = geometry.isValid() ? geometry.getNodeCount() : -1;
    if (count < 0 || count > std::numeric_limits<int>::max()) {
        HBE_PROGRAMMING_ERROR(
            "data/HgdDataSetGrid",
            QCoreApplication::translate("HgdDataSetGrid", "The grid is not valid or too large"));
    }
    return static_cast<int>(count);
}
} // namespace

HgdDataSetGrid::HgdDataSetGrid(const HbgGeomGrid& geometry)
    : HgdADataSet(nodeCountOf(geometry))
    , m_geometry(geometry)
{
}

HgdDataSetGrid::~HgdDataSetGrid() = default;

int HgdDataSetGrid::getAxisLength(int axis) const
{
    switch (axis) {
    case 0:
        return m_geometry.getNx();
    case 1:
        return m_geometry.getNy();
    case 2:
        return m_geometry.getNz();
    default:
        HBE_PROGRAMMING_ERROR(
            "data/HgdDataSetGrid",
            QCoreApplication::translate("HgdDataSetGrid", "The grid has no axis %1").arg(axis));
    }
}

std::unique_ptr<HgdADataSet> HgdDataSetGrid::clone() const
{
    return std::make_unique<HgdDataSetGrid>(*this);
}
