// Selects samples by rules: as bits, and as an expression for Python. The dataset and the filter
// are kept in a project directory, where another program finds them; the count alone goes to
// stdout.
//
//     select_samples [SAMPLES]
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/filter/KufSampleFilter.h>
#include <util/filter/KufSampleFilterDirectory.h>
#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>
#include <basic/error/HbeError.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{
/// A campaign whose grades rise and fall along the holes, with gaps; the same on every run.
HbdDataTable makeSamples(int count)
{
    auto zinc = std::make_unique<HbdVariableReal>(HbdVariableDetails("zinc"));
    auto hole = std::make_unique<HbdVariableText>(HbdVariableDetails("hole", HbdEVarType::TEXT));
    auto rock =
        std::make_unique<HbdVariableEnum>(HbdVariableDetails("rock type", HbdEVarType::CATEGORY));
    HbdEnumCatalog catalog;
    for (const char* label : {"massive sulphide", "stringer zone", "host rock"})
        catalog.findOrAdd(label);
    rock->setCatalog(catalog);
    for (int i = 0; i < count; ++i) {
        zinc->append(i % 50 == 0 ? HbbGlobal::D_FFFF : 300.0 + 250.0 * std::sin(i * 0.01));
        hole->append(QString("%1-%2").arg(i % 3 == 0 ? "RC" : "DDH").arg(i / 100));
        rock->append(static_cast<quint16>(i / 7 % 3));
    }
    HbdDataTable table;
    table.addVariable(std::move(zinc));
    table.addVariable(std::move(hole));
    table.addVariable(std::move(rock));
    return table;
}

KufSampleFilter makeFilter()
{
    const auto variable = [](const char* name) {
        return KudDatasetVariable::createVariable("Points", name);
    };
    KufSampleFilter filter("rich ore");
    filter.addRule(variable("zinc"),
                   KufSampleFilterRuleNumeric(
                       KufSampleFilterRuleNumeric::CompareOperator::GREATER_THAN, 300.0));
    filter.addRule(variable("rock type"),
                   KufSampleFilterRuleEnum({"massive sulphide", "stringer zone"}));
    filter.addRule(variable("hole"),
                   KufSampleFilterRuleAlpha(KufSampleFilterRuleAlpha::Mode::CONTAINS, "RC"));
    filter.setCombination("R1 and R2 and not R3");
    return filter;
}
} // namespace

int main(int argc, char** argv)
{
    try {
        QDir("study").removeRecursively();
        KudMemoryDatasetPoint dataset("campaign");
        dataset.setDataTable(makeSamples(argc > 1 ? std::atoi(argv[1]) : 100000));
        const KufSampleFilter filter = makeFilter();
        KudDatasetDirectory("study").save(dataset);
        KufSampleFilterDirectory("study").save(filter);

        const QList<KudDatasetVariable> variables = filter.getVariables();
        const KufSampleFilterPythonVisitor python(&filter, &dataset, variables, "data");
        std::fprintf(stderr, "%s\n", qPrintable(python.getEscapedPythonString()));
        const KufSampleFilterQBitArrayVisitor bits(&filter, &dataset, variables);
        std::printf("%d\n", bits.getSelection().count(true));
        return 0;
    } catch (const HbeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
