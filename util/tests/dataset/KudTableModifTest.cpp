#include <util/dataset/KudTableModif.h>

#include <basic/data/HbdScDetails.h>

#include <functional>
#include <map>
#include <set>

namespace
{
using Modif = KudTableModif;
using Ranks = HbiIntervalIntSmallDisjoint;

KudDatasetVariable named(const QString& name)
{
    return KudDatasetVariable::createVariable(QStringLiteral("P"), name);
}
const KudDatasetVariable au = named("Au"), cu = named("Cu"), zn = named("Zn");

TEST(KudTableModif, ReasonsFillWhatBelongsToThem)
{
    const Ranks ranks = {HbiIntervalIntSmall(2, 3), HbiIntervalIntSmall(7, 7)};
    const struct {
        int reason;
        bool lists, changes, adds, removes;
        int count;
    } cases[] = {
        {Modif::VariableAdded, true, false, false, false, 1},
        {Modif::VariableRemoved, true, false, false, false, 1},
        {Modif::VariableRenamed, true, false, false, false, 1},
        {Modif::DetailsFacet5, true, false, false, false, 1},
        {Modif::SamplesAdded, false, false, true, false, 1},
        {Modif::SamplesRemoved, false, false, false, true, 1},
        {Modif::ValuesChanged, true, true, false, false, 2},
        {Modif::HighlightChanged, false, false, false, false, 0},
        {Modif::MaskChanged, false, false, false, false, 0},
        {Modif::Reset, false, false, false, false, 1},
        {0, false, false, false, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reason);
        const auto reason = static_cast<Modif::Reason>(c.reason);
        const Modif modif(reason, au, ranks);
        EXPECT_EQ(int(modif.reasons()), c.reason);
        EXPECT_EQ(modif.isEmpty(), c.reason == 0);
        EXPECT_TRUE(modif.testReason(reason));
        EXPECT_EQ(modif.testReason(Modif::Reason(0)), c.reason == 0);
        EXPECT_EQ(modif.variables(reason).contains(au, true), c.lists);
        EXPECT_TRUE(modif.variables(Modif::Reasons()).isEmpty());
        EXPECT_EQ(modif.hasModifForVariable(au), c.lists);
        EXPECT_FALSE(modif.hasModifForVariable(cu));
        EXPECT_EQ(modif.changedValues(au), c.changes ? ranks : Ranks());
        EXPECT_EQ(modif.addedSamples(), c.adds ? ranks : Ranks());
        EXPECT_EQ(modif.removedSamples(), c.removes ? ranks : Ranks());
        EXPECT_EQ(modif.getNumberOfModif(), c.count);
        EXPECT_EQ(Modif(reason, KudDatasetVariable(), ranks).getNumberOfModif(), c.count)
            << "a reason without a valid variable counts, and lists nothing";
        EXPECT_TRUE(Modif(reason, KudDatasetVariable(), ranks).variables(reason).isEmpty());
    }
}

TEST(KudTableModif, DetailsOfTheLaterNoticeReplaceAndCount)
{
    Modif first(Modif::VariableRenamed, au);
    first.setDetails(au, HbdVariableDetails("old"));
    const Modif copy = first;
    Modif second(Modif::DetailsFacet2, au);
    HbdVariableDetails details("new");
    details.tags = HbbTags(QString("tag"));
    second.setDetails(au, details);
    HbdScDetails compound;
    compound.details.name = "whole";
    second.setCompoundDetails(cu, compound);
    first.merge(second);
    EXPECT_EQ(first.details(au), details);
    EXPECT_EQ(first.getDetailsName(au), QString("new"));
    EXPECT_EQ(first.getDetailsTags(au), details.tags);
    EXPECT_EQ(first.compoundDetails(cu), compound);
    EXPECT_EQ(first.details(zn), HbdVariableDetails());
    EXPECT_TRUE(first.hasModifForVariable(cu));
    EXPECT_EQ(first.getNumberOfModif(), 2 + 1 + 1);
    EXPECT_EQ(copy.getDetailsName(au), QString("old")) << "copies do not share what changes";
}

TEST(KudTableModif, EachFieldOfTheDetailsHasItsReason)
{
    using Edit = std::function<void(HbdVariableDetails&)>;
    const HbuUnit unit("m", "metre", "m", HbuEUnitClass(), HbuEUnitSystem(), HbuUnitTransfo());
    const struct {
        Modif::Reason reason;
        Edit edit;
    } cases[] = {
        {Modif::VariableRenamed, [](auto& d) { d.name = "b"; }},
        {Modif::DetailsFacet1, [](auto& d) { d.type = HbdEVarType::TEXT; }},
        {Modif::DetailsFacet1, [](auto& d) { d.support = HbdESupport::GRID; }},
        {Modif::DetailsFacet2, [](auto& d) { d.role = HbdEVarRole::NAME; }},
        {Modif::DetailsFacet2, [](auto& d) { d.tags = HbbTags(QString("t")); }},
        {Modif::DetailsFacet3, [&](auto& d) { d.unit = unit; }},
        {Modif::DetailsFacet3, [&](auto& d) { d.displayUnit = unit; }},
        {Modif::DetailsFacet4, [](auto& d) { d.colorScaleId = "c"; }},
        {Modif::DetailsFacet4, [](auto& d) { d.temporary = true; }},
        {Modif::VariableFormatChanged, [](auto& d) { d.format = HbbEFormat::SCIENTIFIC; }},
        {Modif::VariableFormatChanged, [](auto& d) { d.automaticFormat = false; }},
        {Modif::VariableCatalogChanged, [](auto& d) { d.catalogId = "k"; }},
        {Modif::DetailsFacet5, [](auto& d) { d.precision = 2; }},
        {Modif::DetailsFacet5, [](auto& d) { d.width = 9; }},
    };
    HbdVariableDetails all("a");
    Modif::Reasons united;
    for (const auto& c : cases) {
        HbdVariableDetails changed("a");
        c.edit(changed);
        EXPECT_EQ(int(Modif::compareDetails(HbdVariableDetails("a"), changed)), c.reason);
        c.edit(all);
        united |= c.reason;
    }
    EXPECT_EQ(Modif::compareDetails(HbdVariableDetails("a"), all), united);
    EXPECT_EQ(Modif::compareDetails(all, all), Modif::Reasons());
    Modif::Reasons listed;
    for (const Modif::Reason reason : Modif::getVariableReasons()) {
        EXPECT_LT(int(listed), int(reason)) << "ascending";
        listed |= reason;
    }
    EXPECT_EQ(listed, united);
}

/// What a notice means, kept in the plainest form.
struct Model {
    int reasons = 0;
    std::set<int> added, removed;
    std::map<KudDatasetVariable, std::set<int>> changed;
    std::map<int, std::vector<KudDatasetVariable>> lists;

    void record(int reason, const KudDatasetVariable& variable, const std::set<int>& ranks)
    {
        reasons |= reason;
        std::vector<KudDatasetVariable>& list = lists[reason];
        if (std::find(list.begin(), list.end(), variable) == list.end())
            list.push_back(variable);
        if (reason == Modif::ValuesChanged)
            changed[variable].insert(ranks.begin(), ranks.end());
    }
    void merge(const Model& other)
    {
        added.insert(other.added.begin(), other.added.end());
        removed.insert(other.removed.begin(), other.removed.end());
        for (const auto& [reason, list] : other.lists) {
            for (const KudDatasetVariable& variable : list) {
                const auto values = other.changed.find(variable);
                record(reason, variable,
                       values == other.changed.end() ? std::set<int>() : values->second);
            }
        }
        reasons |= other.reasons;
    }
};

std::set<int> ranksOf(const Ranks& ranks)
{
    std::set<int> set;
    ranks.forEachRank([&set](int rank) { set.insert(rank); });
    return set;
}

void expectSame(const Modif& modif, const Model& model)
{
    ASSERT_EQ(int(modif.reasons()), model.reasons);
    ASSERT_EQ(modif.getNumberOfModif(),
              model.reasons == Modif::Reset
                  ? 1
                  : int(!model.added.empty()) + int(!model.removed.empty()) +
                        int(model.changed.size()) + int(model.lists.size()));
    ASSERT_EQ(ranksOf(modif.addedSamples()), model.added);
    ASSERT_EQ(ranksOf(modif.removedSamples()), model.removed);
    const auto changed = modif.changedValues();
    ASSERT_EQ(changed.size(), int(model.changed.size()));
    for (const auto& [variable, ranks] : model.changed) {
        ASSERT_EQ(ranksOf(changed.value(variable)), ranks);
        ASSERT_EQ(modif.changedValues(variable), changed.value(variable));
    }
    KudDatasetVariableList all;
    for (const auto& [reason, list] : model.lists) {
        KudDatasetVariableList expected;
        for (const KudDatasetVariable& variable : list)
            expected.append(variable);
        ASSERT_EQ(modif.variables(static_cast<Modif::Reason>(reason)), expected) << reason;
        all.append(expected);
    }
    ASSERT_EQ(modif.variables(Modif::Reasons(0xFFFF)), all);
}

/// Random notices merged in random nesting agree with the model; copies taken on the way stay.
TEST(KudTableModif, MergingAgreesWithAPlainModel)
{
    std::mt19937 random(11);
    const auto pick = [&](int count) { return static_cast<int>(random() % unsigned(count)); };
    const auto wholeRow = std::make_shared<const QVector<KudDatasetVariable>>(
        QVector<KudDatasetVariable>{named("3"), named("1"), named("70")});
    const auto randomNotice = [&](int variables) {
        std::pair<Modif, Model> notice;
        const int first = pick(60), last = first + pick(3);
        const Ranks ranks{HbiIntervalIntSmall(first, last)};
        const std::set<int> set = ranksOf(ranks);
        const auto variable = [&] { return named(QString::number(pick(variables))); };
        const auto reason = static_cast<Modif::Reason>(1 << pick(16));
        if (pick(4) == 0) {
            notice.first = Modif(wholeRow, ranks);
            for (const KudDatasetVariable& each : *wholeRow)
                notice.second.record(Modif::ValuesChanged, each, set);
            return notice;
        }
        if (pick(3) == 0) {
            KudDatasetVariableList row;
            for (int i = pick(30); i >= 0; --i)
                row.append(variable());
            notice.first = pick(2) ? Modif(row, ranks) : Modif();
            for (const KudDatasetVariable& each : row) {
                notice.first.addChangedValues(each, ranks);
                notice.second.record(Modif::ValuesChanged, each, set);
            }
            return notice;
        }
        const KudDatasetVariable subject = variable();
        notice.first = Modif(reason, subject, ranks);
        notice.second.reasons = reason;
        if (reason == Modif::SamplesAdded) {
            notice.second.added = set;
        } else if (reason == Modif::SamplesRemoved) {
            notice.second.removed = set;
        } else if (reason <= Modif::DetailsFacet5 || reason == Modif::ValuesChanged) {
            notice.second.record(reason, subject, set);
        }
        return notice;
    };
    for (int round = 0; round < 60; ++round) {
        auto total = randomNotice(80);
        const int variables = round % 3 == 0 ? 4 : 80;
        for (int step = 0; step < 40; ++step) {
            const auto before = total;
            auto next = randomNotice(variables);
            if (pick(4) == 0) {
                const auto more = randomNotice(variables);
                next.first.merge(more.first);
                next.second.merge(more.second);
            }
            total.first.merge(total.first); // changes nothing
            total.first.merge(next.first);
            total.second.merge(next.second);
            ASSERT_NO_FATAL_FAILURE(expectSame(total.first, total.second));
            ASSERT_NO_FATAL_FAILURE(expectSame(before.first, before.second));
        }
    }
}
} // namespace
