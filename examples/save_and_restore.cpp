// Undo with a memento, then a project directory: a dataset is saved as a file and read back equal.
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudMemoryDatasetPoint.h>

#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeError.h>

#include <cstdio>

namespace
{
std::unique_ptr<HbdAVariable> makeColumn(const QString& name, const HbdEVarRole& role,
                                         std::vector<double> values)
{
    auto column =
        std::make_unique<HbdVariableReal>(HbdVariableDetails(name, HbdEVarType::REAL, role));
    column->setValues(std::move(values));
    return column;
}

void fill(KudMemoryDatasetPoint& dataset)
{
    HbdDataTable table;
    table.addVariable(makeColumn("x", HbdEVarRole::X_COORDINATE, {10.0, 20.0, 30.0}));
    table.addVariable(makeColumn("y", HbdEVarRole::Y_COORDINATE, {5.0, 5.0, 7.5}));
    table.addVariable(
        makeColumn("copper", HbdEVarRole::NONE, {0.31, HbbGlobal::D_FFFF, 1.0 / 3.0}));
    dataset.setDataTable(std::move(table));
}

bool undoEdits(KudMemoryDatasetPoint& dataset)
{
    const KuuMemento before = dataset.getMemento();
    dataset.getPointTable()->deleteSample(1);
    std::printf("after the edit: %d samples\n", dataset.getObjectCount());

    // The memento holds the whole dataset. Observers hear of the restored state once.
    dataset.setMemento(before, true);
    std::printf("after the undo: %d samples\n", dataset.getObjectCount());
    return dataset.getMemento() == before;
}

bool saveAndRead(const KudMemoryDatasetPoint& dataset)
{
    const KudDatasetDirectory project("project");
    project.save(dataset);

    // Another run of the program would begin here, with nothing but the name.
    const auto restored = project.read(project.findName("drill core"));
    std::printf("read '%s': %d samples\n", qPrintable(restored->getName()),
                restored->getObjectCount());
    return restored->getMemento() == dataset.getMemento(); // every bit of every value
}
} // namespace

int main()
{
    try {
        QDir("project").removeRecursively();
        KudMemoryDatasetPoint dataset("drill core");
        fill(dataset);
        return undoEdits(dataset) && saveAndRead(dataset) ? 0 : 1;
    } catch (const HbeError& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
