#pragma once

#include <util/dataset/KudMemoryDataTable.h>
#include <util/observable/KuoIObserver.h>

// What the tests of a table share: four samples of three variables, and who hears of them.

using Ranks = HbiIntervalIntSmallDisjoint;
using Range = HbiIntervalIntSmall;

class Recorder : public KuoIObserver<KudDataTableModif>
{
public:
    void update(const KudDataTableModif& notice) override { notices.push_back(notice.data()); }
    std::vector<KudTableModif> notices;

    std::vector<int> reasons() const
    {
        std::vector<int> all;
        for (const KudTableModif& notice : notices)
            all.push_back(static_cast<int>(notice.reasons()));
        return all;
    }
};

class KudDataTable : public testing::Test
{
protected:
    KudDataTable()
    {
        x = table.createVariable(
            HbdVariableDetails("x", HbdEVarType::REAL, HbdEVarRole::X_COORDINATE));
        n = table.createVariable(HbdVariableDetails("n", HbdEVarType::INTEGER));
        t = table.createVariable(HbdVariableDetails("t", HbdEVarType::TEXT));
        table.createSamples({{1.0, 10, "a"}, {2.0, 20, "b"}, {3.0, 30, "c"}, {4.0, 40, "d"}});
        table.addObserver(&recorder);
    }

    QVariant cell(const KudDatasetVariable& variable, int rank) const
    {
        return table.readValues(variable)->getVariant(rank);
    }

    Recorder recorder; // outlives what it observes
    KudMemoryDataTable table{"Points"};
    KudDatasetVariable x, n, t;
};
