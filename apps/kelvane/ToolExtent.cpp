#include "ToolExtent.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/utils/KuuCoordSystemConverter.h>
#include <util/utils/KuuGeometrySet.h>

#include <basic/data/HbdANumericVariable.h>
#include <basic/geometry/HbgGeomGrid.h>
#include <basic/unit/HbuUnitService.h>

#include <algorithm>
#include <functional>

namespace
{
constexpr int BLOCK_SIZE = 100000;

/// Fills x and y with the coordinates of `count` samples from `first` on.
using Reader = std::function<void(int first, int count, double* x, double* y)>;

HbgBox convertAll(int sampleCount, const KuuCoordSystemConverter& converter, const Reader& read)
{
    HbgBox box;
    std::vector<double> x(BLOCK_SIZE);
    std::vector<double> y(BLOCK_SIZE);
    for (int first = 0; first < sampleCount; first += BLOCK_SIZE) {
        const int count = std::min(BLOCK_SIZE, sampleCount - first);
        read(first, count, x.data(), y.data());
        converter.convert(x.data(), y.data(), nullptr, count);
        for (std::size_t i = 0; i < std::size_t(count); ++i)
            box.unite(HbgVector2D{x[i], y[i]});
    }
    return box;
}
} // namespace

HbuUnit ToolExtent::getUnitOfY(const KudADataset& dataset)
{
    const KudADataTable* table = dataset.getObjectTable();
    const HbdANumericVariable* y = table != nullptr ? table->readYCoordinate() : nullptr;
    if (y == nullptr)
        return dataset.getCoordinateUnit();
    const HbuUnit unit = y->getDetails().unit;
    return unit.isNone() ? dataset.getCoordSystem().getUnit() : unit;
}

HbgBox ToolExtent::compute(const KudADataset& dataset, const KuuCoordSystem& system)
{
    const KuuCoordSystemConverter converter(dataset.getCoordSystem(), dataset.getCoordinateUnit(),
                                            system, HbuUnit());
    const int sampleCount = dataset.getObjectCount();
    if (const KudMemoryDatasetGrid* grid = KudMemoryDatasetGrid::convert(&dataset)) {
        const KuuGeometrySet geometry = grid->readGeometrySet();
        if (!geometry.isValid())
            return HbgBox();
        const HbgGeomGrid& nodes = geometry.toGrid();
        return convertAll(sampleCount, converter, [&](int first, int count, double* x, double* y) {
            nodes.getPositions(first, count, x, y, nullptr);
        });
    }
    const KudADataTable* table = dataset.getObjectTable();
    const HbdANumericVariable* x = table != nullptr ? table->readXCoordinate() : nullptr;
    const HbdANumericVariable* y = table != nullptr ? table->readYCoordinate() : nullptr;
    if (x == nullptr || y == nullptr)
        return HbgBox();
    // The converter takes both in one unit.
    const HbuUnitTransfo toUnitOfX = HbuUnitService::getInstance().getConversion(
        KuuCoordSystemConverter::toAngle(getUnitOfY(dataset)),
        KuuCoordSystemConverter::toAngle(dataset.getCoordinateUnit()));
    return convertAll(sampleCount, converter, [&](int first, int count, double* xs, double* ys) {
        x->readNumbers(first, count, xs);
        y->readNumbers(first, count, ys);
        toUnitOfX.apply(ys, count);
    });
}
