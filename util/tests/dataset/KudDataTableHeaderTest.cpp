#include <util/dataset/KudDataTableHeader.h>

namespace
{
KudDatasetVariable named(const char* name, const char* index = "")
{
    return KudDatasetVariable::createRealization("P", QString::fromUtf8(name),
                                                 QString::fromUtf8(index));
}
HbdVariableDetails withRole(const char* name, const HbdEVarRole& role)
{
    return HbdVariableDetails(QString::fromUtf8(name), HbdEVarType::INTEGER, role);
}

class KudDataTableHeaderTest : public testing::Test
{
protected:
    void SetUp() override
    {
        header.addVariable(z, withRole("z", HbdEVarRole::Z_COORDINATE));
        header.addVariable(au, withRole("Au", HbdEVarRole::NAME));
        header.addVariable(au1, withRole("Au1", HbdEVarRole::NAME));
        catalog.setId("rocks");
        header.setCatalog(au1, catalog);
        info.type = HbdECompoundType::VECTOR;
        info.details = withRole("Wind", HbdEVarRole::NONE);
        info.components.components = {{"X", HbdEComponentRole()}};
        header.addCompound(wind, info);
    }
    const KudDatasetVariable z = named("z"), au = named("Au"), au1 = named("Au", "1"),
                             wind = named("Wind"), unknown = named("?");
    KudDataTableHeader header;
    HbdEnumCatalog catalog;
    KudDataTableHeader::CompoundInfo info;
};

TEST_F(KudDataTableHeaderTest, KeepsColumnOrderAndWhatIsKnown)
{
    EXPECT_FALSE(header.isValid());
    EXPECT_EQ(header.listByOrder().toList(), (QList<KudDatasetVariable>{z, au, au1, wind}));
    EXPECT_EQ(header.indexOf(au1), 2);
    EXPECT_EQ(header.indexOf(named("z", "1")), -1);
    EXPECT_EQ(header.roleToVar(HbdEVarRole::NAME), au) << "the first in column order";
    EXPECT_EQ(header.roleToVar(HbdEVarRole::COLOR), KudDatasetVariable());
    EXPECT_EQ(header.getDetails(au1), withRole("Au1", HbdEVarRole::NAME));
    EXPECT_EQ(header.getType(au), HbdEVarType::INTEGER);
    EXPECT_EQ(header.getCatalog(au1), catalog);
    EXPECT_TRUE(header.isCompound(wind) && !header.isCompound(au));
    EXPECT_EQ(header.getCompoundInfo(wind), info);
    EXPECT_EQ(header.getDetails(unknown), HbdVariableDetails());
    EXPECT_EQ(header.getCompoundInfo(unknown), KudDataTableHeader::CompoundInfo());
    EXPECT_TRUE(header.getCatalog(unknown).isEmpty());

    header.setValid(true);
    header.clear();
    EXPECT_TRUE(header.isEmpty() && !header.isValid() && !header.isCompound(wind));
}

TEST_F(KudDataTableHeaderTest, StoresNothingForWhatItDoesNotHold)
{
    header.addVariable(KudDatasetVariable(), withRole("", HbdEVarRole::COLOR));
    header.updateVariableDetails(unknown, withRole("?", HbdEVarRole::COLOR));
    header.setCatalog(unknown, catalog);
    header.addCompound(KudDatasetVariable(), info);
    EXPECT_EQ(header.count(), 4);
    EXPECT_EQ(header.getRole(unknown), HbdEVarRole::NONE);
    EXPECT_EQ(header.getCatalog(unknown), HbdEnumCatalog());
    EXPECT_FALSE(header.isCompound(KudDatasetVariable()));

    header.addVariable(z, withRole("z", HbdEVarRole::COLOR));
    EXPECT_EQ(header.count(), 4);
    EXPECT_EQ(header.roleToVar(HbdEVarRole::COLOR), z) << "a known variable gets new details";
    header.removeVariable(header.at(0));
    EXPECT_EQ(header.roleToVar(HbdEVarRole::COLOR), KudDatasetVariable());
}

TEST_F(KudDataTableHeaderTest, RenamingCarriesTheFamilyAlong)
{
    header.renameVariable(au, "Ag");
    EXPECT_EQ(header.listByOrder().toList(),
              (QList<KudDatasetVariable>{z, named("Ag"), named("Ag", "1"), wind}));
    EXPECT_EQ(header.getDetails(named("Ag")), withRole("Au", HbdEVarRole::NAME));
    EXPECT_EQ(header.getCatalog(named("Ag", "1")), catalog);
    EXPECT_EQ(header.getDetails(au), HbdVariableDetails());
    header.renameVariable(wind, "Sea");
    EXPECT_TRUE(header.isCompound(named("Sea")) && !header.isCompound(wind));

    const KudDatasetVariableList before = header.listByOrder();
    header.renameVariable(z, "Ag");
    header.renameVariable(z, "");
    EXPECT_EQ(header.listByOrder(), before);
    EXPECT_EQ(header.getRole(z), HbdEVarRole::Z_COORDINATE);
}
} // namespace
