#include <util/dataset/KudDatasetVariable.h>
#include <util/dataset/KudDatasetVariableFilter.h>
#include <util/dataset/KudDatasetVariableList.h>

void PrintTo(const KudDatasetVariable& variable, std::ostream* out)
{
    *out << variable.support().toStdString() << ':' << variable.getFullVariableName().toStdString();
}

namespace
{
KudDatasetVariable named(const char* support, const char* name, const char* index = "",
                         const char* component = "")
{
    return KudDatasetVariable::createComponent(QString::fromUtf8(support), QString::fromUtf8(name),
                                               QString::fromUtf8(index),
                                               QString::fromUtf8(component));
}
using Variables = QList<KudDatasetVariable>;

const KudDatasetVariable none;
const KudDatasetVariable au = named("P", "Au");
const KudDatasetVariable au1 = named("P", "Au", "1");
const KudDatasetVariable au2x = named("P", "Au", "2", "x");
const KudDatasetVariable aux = named("P", "Au", "", "x");
const KudDatasetVariable cu = named("P", "Cu");
const KudDatasetVariable cu1 = named("P", "Cu", "1");
const KudDatasetVariable gridAu = named("G", "Au");

TEST(KudDatasetVariable, KindsFollowTheEmptyTexts)
{
    const struct {
        KudDatasetVariable variable;
        bool valid, plain, realization, component;
        const char* fullName;
    } cases[] = {
        {none, false, true, false, false, ""},
        {named("P", ""), false, true, false, false, ""},
        {named("", "Au"), false, true, false, false, "Au"},
        {au, true, true, false, false, "Au"},
        {KudDatasetVariable::createRealization("P", "Au", "1"), true, false, true, false, "Au[1]"},
        {KudDatasetVariable::createComponent("P", "Au", "x"), true, false, false, true, "Au.x"},
        {au2x, true, false, true, true, "Au[2].x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.variable));
        EXPECT_EQ(c.variable.isValid(), c.valid);
        EXPECT_EQ(c.variable.isVariable(), c.plain);
        EXPECT_EQ(c.variable.isRealization(), c.realization);
        EXPECT_EQ(c.variable.isComponent(), c.component);
        EXPECT_EQ(c.variable.getFullVariableName(), QString::fromUtf8(c.fullName));
    }
    EXPECT_EQ(au2x.renamed("Zn"), named("P", "Zn", "2", "x"));
    EXPECT_TRUE(au.isChild(aux) && au.isChild(au1));
    EXPECT_FALSE(au.isChild(au) || au1.isChild(aux) || gridAu.isChild(au1) || cu.isChild(au1));
}

TEST(KudDatasetVariable, OrderIsSupportNameIndexComponent)
{
    const std::vector<KudDatasetVariable> ordered = {
        named("A", "z"),          named("B", "Z"),      named("B", "a"),
        named("B", "a", "", "c"), named("B", "a", "1"), named("B", "a", "1", "b"),
        named("B", "a", "10"),    named("B", "a", "2"),
    };
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            EXPECT_EQ(ordered[i] < ordered[j], i < j) << i << ' ' << j;
            EXPECT_EQ(ordered[i] == ordered[j], i == j) << i << ' ' << j;
        }
    }
}

TEST(KudDatasetVariableList, HoldsValidVariablesOnceInOrder)
{
    KudDatasetVariableList list(Variables{au1, none, named("P", ""), cu, au1});
    list.append(KudDatasetVariableList(gridAu));
    list.append(list);
    EXPECT_EQ(list.toList(), (Variables{au1, cu, gridAu}));
    list.append(au2x);
    list.append(aux);
    EXPECT_EQ(list.getSupports(), QStringList({"G", "P"}));
    EXPECT_EQ(list.getVariables("P"), QStringList({"Au", "Cu"}));
    EXPECT_EQ(list.getIndices("P", "Au"), QStringList({"1", "2"}));
    EXPECT_EQ(list.getComponents("P", "Au"), QStringList("x"));
    EXPECT_FALSE(list.isMonoSupport());
    list.remove(gridAu);
    list.removeAll(au2x);
    EXPECT_TRUE(list.isMonoSupport());
    EXPECT_EQ(list.getIndices("P", "Au"), QStringList("1"));
    EXPECT_NE(list, KudDatasetVariableList(Variables{cu, au1, aux}));
    list.sort();
    EXPECT_EQ(list.toList(), (Variables{aux, au1, cu}));
}

TEST(KudDatasetVariableList, ContainsAndFixByTheLooseRules)
{
    const KudDatasetVariableList plain(au);
    const KudDatasetVariableList children(Variables{cu, au2x, au1});
    const struct {
        const KudDatasetVariableList& list;
        KudDatasetVariable asked, fixed;
        bool exact, loose;
    } cases[] = {
        {plain, au, au, true, true},
        {plain, au2x, au, false, true},
        {plain, gridAu, none, false, false},
        {children, au, none, false, false},
        {children, au2x, au2x, true, true},
        {children, named("P", "Au", "2"), au2x, false, true},
        {children, named("P", "Au", "3", "x"), au2x, false, true},
        {children, named("P", "Au", "1", "x"), au1, false, true},
        {children, named("P", "Au", "3"), none, false, false},
        {children, named("P", "Au", "3", "y"), none, false, false},
        {children, named("G", "Au", "1"), none, false, false},
        {children, cu1, cu, false, true},
        {children, none, none, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.asked));
        EXPECT_EQ(c.list.contains(c.asked, true), c.exact);
        EXPECT_EQ(c.list.contains(c.asked, false), c.loose);
        EXPECT_EQ(c.list.fix(c.asked), c.fixed);
        const KudDatasetVariableList asked(c.asked);
        EXPECT_EQ(asked.intersects(c.list, false), c.loose) << "members of the asked list";
        EXPECT_EQ(asked.intersection(c.list, true).count(), c.exact ? 1 : 0);
    }
    EXPECT_EQ(children.intersection(Variables{au, cu}, false), children);
    EXPECT_EQ(children.intersection(Variables{au, cu}, true), KudDatasetVariableList(cu));
}

TEST(KudDatasetVariableList, FindsByName)
{
    const KudDatasetVariableList list(Variables{au1, cu, gridAu, au, aux, au2x});
    EXPECT_EQ(list.indexOf(QString("Au")), 0);
    EXPECT_EQ(list.indexOf(QString("au")), -1);
    EXPECT_EQ(list.indexOf(au), 3);
    EXPECT_EQ(list.getVariable("Au"), gridAu) << "plain members only, the first of them";
    EXPECT_EQ(list.getVariable("Zn"), none);
    EXPECT_EQ(list.getRealization("Au", "1"), au1);
    EXPECT_EQ(list.getComponent("Au", "x"), aux);
    EXPECT_EQ(list.getComponent("Cu", "x"), none);
}

TEST(KudDatasetVariableList, RenamesTheWholeFamilyInPlace)
{
    KudDatasetVariableList list(Variables{au1, cu, au, gridAu, aux});
    list.updateVariableName(list.at(2), "Zn");
    EXPECT_EQ(list.toList(), (Variables{named("P", "Zn", "1"), cu, named("P", "Zn"), gridAu,
                                        named("P", "Zn", "", "x")}));
    EXPECT_EQ(list.getVariables("P"), QStringList({"Cu", "Zn"}));
    list.updateVariableName(named("P", "Zn"), "Cu");
    EXPECT_EQ(list.toList(), (Variables{cu1, cu, gridAu, named("P", "Cu", "", "x")}))
        << "no duplicate";
    list.updateVariableName(cu1, "Ag");
    EXPECT_EQ(list.indexOf(cu), 1) << "a realization goes alone";
    list.updateVariableName(cu, "");
    EXPECT_EQ(list.indexOf(cu), 1);
}

/// The list against a plain one that walks, over random edits that cross the size of the index.
TEST(KudDatasetVariableList, AgreesWithAWalkThroughRandomEdits)
{
    std::mt19937 random(7);
    const auto pick = [&](int count) { return static_cast<int>(random() % unsigned(count)); };
    const auto text = [&](int count) { return pick(2) ? QString::number(pick(count)) : QString(); };
    KudDatasetVariableList list;
    Variables model;
    int longest = 0;
    for (int step = 0; step < 4000; ++step) {
        const auto variable = KudDatasetVariable::createComponent(
            QString::number(pick(2)), QString::number(pick(6)), text(3), text(3));
        const bool isGrowing = step / 500 % 2 == 0;
        if (pick(4) < (isGrowing ? 3 : 1)) {
            list.append(variable);
            if (!model.contains(variable))
                model.append(variable);
        } else {
            list.remove(variable);
            model.removeAll(variable);
        }
        if (pick(200) == 0) {
            list.sort();
            std::sort(model.begin(), model.end());
        }
        longest = qMax(longest, list.count());
        ASSERT_EQ(list.toList(), model);
        ASSERT_EQ(list.indexOf(variable), model.indexOf(variable));
        int byName = 0;
        while (byName < model.size() && model[byName].variable() != variable.variable())
            ++byName;
        ASSERT_EQ(list.indexOf(variable.variable()), byName < model.size() ? byName : -1);
    }
    EXPECT_GT(longest, 60);
}

TEST(KudDatasetVariableList, AppendsManyVariablesInLinearTime)
{
    KudDatasetVariableList list;
    for (int i = 0; i < 100000; ++i) { // minutes, were it quadratic
        list.append(KudDatasetVariable::createRealization("P", "Au", QString::number(i)));
    }
    EXPECT_EQ(list.getIndices("P", "Au").size(), 100000);
    EXPECT_EQ(list.indexOf(list.last()), 99999);
}

TEST(KudDatasetVariableFilter, AcceptsAllUntilRestricted)
{
    KudDatasetVariableFilter filter;
    EXPECT_TRUE(filter.acceptSupport(HbdESupport::POINT, "P"));
    EXPECT_TRUE(filter.acceptType(HbdEVarType::DATE) && filter.acceptRole(HbdEVarRole::NONE));
    EXPECT_TRUE(filter.acceptTags(QString("t")) && filter.acceptTemporary(true));
    EXPECT_TRUE(filter.acceptCompound(HbdECompoundType::NONE) && !filter.acceptOnlyCompound());

    filter.discardRoles(HbdEVarRole::NAME);
    filter.discardTags(HbbTags({"a", "b"}));
    filter.discardTemporary(true);
    EXPECT_FALSE(filter.setAuthorizedTypes(HbdVarTypeFlags::ANY)) << "no change";
    EXPECT_TRUE(filter.setAuthorizedTypes(HbdEVarType::REAL));
    EXPECT_TRUE(filter.setAuthorizedSupportNames({"P"}));
    EXPECT_TRUE(!filter.acceptRole(HbdEVarRole::NAME) && filter.acceptRole(HbdEVarRole::NONE));
    EXPECT_TRUE(!filter.acceptTags(HbbTags({"c", "b"})) && filter.acceptTags(QString("B")));
    EXPECT_TRUE(filter.acceptTemporary(false) && !filter.acceptTemporary(true));
    EXPECT_TRUE(filter.acceptType(HbdEVarType::REAL) && !filter.acceptType(HbdEVarType::TEXT));
    EXPECT_FALSE(filter.acceptSupport(HbdESupport::POINT, "p"));
    EXPECT_TRUE(filter.setAuthorizedSupports(HbdESupport::GRID));
    EXPECT_FALSE(filter.acceptSupport(HbdESupport::POINT, "P"));
}
} // namespace
