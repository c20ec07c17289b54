// Shows a table in a view: sorted, filtered by a rule, edited, with the samples that are selected.
// With an argument the window stays open.
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableSortFilterModel.h>
#include <util/extern/KueTableReader.h>
#include <util/filter/KufSampleFilter.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterRuleText.h>

#include <basic/error/HbeError.h>

#include <QtCore/QFile>
#include <QtWidgets/QApplication>
#include <QtWidgets/QTableView>

#include <cstdio>

namespace
{
const char TABLE[] = "hole,easting,northing,rock,zinc\n"
                     "B12,652100,6862010,schist,112.5\n"
                     "B2,652150,6862040,granite,\n"
                     "B10,652210,6862090,schist,87.25\n"
                     "B1,652260,6862120,gneiss,240\n";

HbdDataTable readTable(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(TABLE);
    file.close();
    return std::move(KueTableReader().read(path).table);
}

void print(const char* title, const QAbstractItemModel& model)
{
    std::printf("%s\n", title);
    for (int row = 0; row < model.rowCount(); ++row) {
        std::printf("  %s:", qPrintable(model.headerData(row, Qt::Vertical).toString()));
        for (int column = 0; column < model.columnCount(); ++column)
            std::printf(" %s", qPrintable(model.index(row, column).data().toString()));
        std::printf("\n");
    }
}

/// The samples of the dataset that pass a rule, as a person writes it.
QBitArray selectSamples(const KudMemoryDatasetPoint& dataset, const QString& text)
{
    const KufSampleFilterRuleText::Rule rule =
        KufSampleFilterRuleText(*dataset.getPointTable()).parse(text);
    KufSampleFilter filter;
    filter.addRule(rule.variable, *rule.rule);
    return KufSampleFilterQBitArrayVisitor(&filter, &dataset, filter.getVariables()).getSelection();
}

int run(bool staysOpen)
{
    KudMemoryDatasetPoint dataset("samples");
    dataset.setDataTable(readTable("holes.csv"));
    KudADataTable& table = *dataset.getPointTable();

    // The model shows the table in another order; the selection is of the table's samples, and a
    // view of a long table says which of its rows it shows.
    KudTableSortFilterModel model(table);
    QTableView view;
    view.setModel(&model);
    view.setSelectionModel(model.getSelectionModel(*table.getHighlight()));
    KudSelector::follow(&view);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setSortingEnabled(true);
    view.show();

    view.sortByColumn(table.getVariableRank(table.getVariableFromName("hole")), Qt::AscendingOrder);
    print("by hole:", model);

    model.setFilter(selectSamples(dataset, "zinc > 100"));
    print("zinc > 100:", model);

    // What is selected or edited in a row is selected or edited in its sample.
    view.selectRow(1);
    const int rank = table.getHighlight()->selectedRows().getMin();
    std::printf("selected: sample %d\n", rank + 1);
    const KudDatasetVariable zinc = table.getVariableFromName("zinc");
    const bool isEdited = model.setData(model.index(1, table.getVariableRank(zinc)), "90.5");

    model.removeFilter();
    print("all:", model);
    if (staysOpen)
        return QApplication::exec();
    return isEdited && model.rowCount() == 4 && rank == 0 ? 0 : 1;
}
} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    try {
        return run(argc > 1);
    } catch (const HbeError& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
