#include <util/utils/KuuUnitCatalog.h>

#include "CapturedLog.h"
#include "FileBytes.h"

#include <basic/error/HbeError.h>
#include <util/system/KusFileUser.h>

namespace
{
using C = HbuEUnitClass;
using S = HbuEUnitSystem;

HbuUnitService& service()
{
    return HbuUnitService::getInstance();
}

/// Each test begins and ends without user units, with a user's directory that does not exist yet.
class KuuUnitCatalogTest : public testing::Test
{
protected:
    void SetUp() override
    {
        KusFileUser::setDirectory(m_folder.filePath("user"));
        m_path = KusFileUser::getPath("unit_user.xml");
        m_connection =
            QObject::connect(&catalog(), &KuuUnitCatalog::unitChanged, [this] { ++m_notices; });
    }
    void TearDown() override
    {
        QObject::disconnect(m_connection);
        KusFileUser::setDirectory({});
        forget();
    }

    static KuuUnitCatalog& catalog() { return KuuUnitCatalog::getInstance(); }
    static void forget()
    {
        for (const HbuUnit& unit : service().getUserUnits())
            service().removeUnit(unit.getKey());
    }

    HbuUnit create(const char* name, const C& unitClass = C::LENGTH,
                   const HbuUnitTransfo& transfo = HbuUnitTransfo::linear(0.75))
    {
        return catalog().createUnit(QString::fromUtf8(name), "sy", unitClass, S::METRIC, transfo);
    }

    QByteArray read() const { return readBytes(m_path); }
    /// Loads a file of these bytes and answers the keys of the user's units.
    QStringList load(const QByteArray& bytes)
    {
        forget();
        m_said.clear();
        catalog().loadUserUnits(writeBytes(m_folder.filePath("units.xml"), bytes));
        return keys();
    }
    static QStringList keys()
    {
        QStringList keys;
        for (const HbuUnit& unit : service().getUserUnits())
            keys.append(unit.getUnitClass().getKey() + ':' + unit.getKey());
        return keys;
    }

    QTemporaryDir m_folder;
    QString m_path;
    CapturedLog m_log;
    QStringList& m_said = m_log.texts;
    int m_notices = 0;
    QMetaObject::Connection m_connection;
};

QByteArray unit(const char* key, const char* unitClass, const char* factor, const char* shift = "",
                const char* unitSystem = "METRIC")
{
    QByteArray fields;
    const std::pair<const char*, const char*> rows[] = {
        {"key", key},           {"name", "A name"},         {"unitClass", unitClass},
        {"symbol", "sy"},       {"unitSystem", unitSystem}, {"transfoFactor", factor},
        {"transfoShift", shift}};
    for (const auto& [name, text] : rows)
        if (*text)
            fields += QByteArray("<") + name + ">" + text + "</" + name + ">";
    return "<unit>" + fields + "</unit>";
}

QByteArray file(const char* version, const QByteArray& units)
{
    return QByteArray("<catalog><version>") + version + "</version>" + units + "</catalog>";
}

TEST_F(KuuUnitCatalogTest, EachChangeIsWrittenAndTold)
{
    KuuUnitCatalog::init(); // without a file
    const HbuUnit foot = create("Vara", C::LENGTH, HbuUnitTransfo::linear(0.3048006096));
    EXPECT_EQ(foot.getKey(), "Vara");
    EXPECT_EQ(create("Vara", C::AREA).getKey(), "Vara_2");
    EXPECT_EQ(create("Ré", C::TEMPERATURE, HbuUnitTransfo::affine(1.25, 273.15)).getKey(), "Ré");
    EXPECT_EQ(m_notices, 3);
    EXPECT_TRUE(catalog().deleteUnit("Vara_2"));
    EXPECT_EQ(m_notices, 4);
    EXPECT_EQ(QString::fromUtf8(read()), R"(<?xml version="1.0" encoding="UTF-8"?>
<catalog>
    <version>2</version>
    <unit>
        <key>Vara</key>
        <name>Vara</name>
        <symbol>sy</symbol>
        <transfoFactor>0.304801</transfoFactor>
        <unitClass>LENGTH</unitClass>
        <unitSystem>METRIC</unitSystem>
    </unit>
    <unit>
        <key>Ré</key>
        <name>Ré</name>
        <symbol>sy</symbol>
        <transfoFactor>1.25</transfoFactor>
        <transfoShift>273.15</transfoShift>
        <unitClass>TEMPERATURE</unitClass>
        <unitSystem>METRIC</unitSystem>
    </unit>
</catalog>
)");
    EXPECT_TRUE(catalog().updateUnit("Vara", "Vara castellana", "", C::LENGTH, S::OTHER,
                                     HbuUnitTransfo::linear(0.8359)));
    EXPECT_EQ(m_notices, 5);
    EXPECT_TRUE(read().contains("<symbol/>"));

    const QVector<HbuUnit> units = service().getUserUnits();
    forget();
    KuuUnitCatalog::init();
    EXPECT_EQ(service().getUserUnits(), units);
    EXPECT_EQ(m_notices, 5);
}

TEST_F(KuuUnitCatalogTest, WhatIsRefusedChangesNothing)
{
    EXPECT_FALSE(create("Zero", C::LENGTH, HbuUnitTransfo::linear(0.)).isValid());
    EXPECT_FALSE(create("Shifted", C::LENGTH, HbuUnitTransfo::affine(1., 2.)).isValid());
    EXPECT_FALSE(create("Nothing", C::NONE).isValid());
    EXPECT_FALSE(catalog().deleteUnit("ft"));
    EXPECT_FALSE(catalog().updateUnit("ft", "Foot", "ft", C::LENGTH, S::METRIC, HbuUnitTransfo()));
    EXPECT_TRUE(service().getUserUnits().isEmpty());
    EXPECT_EQ(m_notices, 0);
    EXPECT_FALSE(QFile::exists(m_path));
}

TEST_F(KuuUnitCatalogTest, TemporaryUnitsStayOutOfFiles)
{
    for (const char* name : {"_tmpEditScaling", "my_tmpDisplayScaling2", "_tmpScaling1"}) {
        const HbuUnit temporary = create(name);
        EXPECT_EQ(service().getUnit(C::LENGTH, name), temporary);
        EXPECT_TRUE(load(file("2", unit(name, "LENGTH", "2"))).isEmpty());
    }
    EXPECT_FALSE(read().contains("_tmp"));
    EXPECT_EQ(m_notices, 3);
}

TEST_F(KuuUnitCatalogTest, EachUnitThatCannotBeUsedIsPassedOver)
{
    const QByteArray good = unit("good", "LENGTH", "2");
    const struct {
        const char* version;
        QByteArray unit;
        QStringList keys;
    } rows[] = {
        {"2", unit("u", "LENGTH", " 0.5 "), {"LENGTH:u"}},
        {"2", unit("u", "TEMPERATURE", "2", "-3"), {"TEMPERATURE:u"}},
        {"2", unit("SURFACE", "AREA", "2"), {"AREA:SURFACE"}},
        {"1", unit("SURFACE", "AREA", "2"), {"AREA:AREA"}},
        {"1", unit("u", "SURFACE", "2"), {"AREA:u"}},
        {"-3", unit("u", "SPECIFIC_ACTIVITY", "2"), {"ACTIVITY_CONCENTRATION:u"}},
        {"x", unit("u", "SURFACE", "2"), {"AREA:u"}}, // as old as can be
        {"3", unit("u", "LENGTH", "2") + "<later><key>v</key></later>", {"LENGTH:u"}},
        {"2", unit("u", "SURFACE", "2"), {}},
        {"2", unit("u", "length", "2"), {}},
        {"2", unit("u", "NONE", "2"), {}},
        {"2", unit("u", "", "2"), {}},
        {"2", unit("", "LENGTH", "2"), {}},
        {"2", unit("ft", "LENGTH", "2"), {}},
        {"2", unit("ft", "AREA", "2"), {"AREA:ft"}},
        {"2", unit("u", "LENGTH", "2", "", "ROMAN"), {}},
        {"2", unit("u", "LENGTH", "0"), {}},
        {"2", unit("u", "LENGTH", "nan"), {}},
        {"2", unit("u", "LENGTH", "1e999"), {}},
        {"2", unit("u", "LENGTH", "0,5"), {}},
        {"2", unit("u", "LENGTH", ""), {}},
        {"2", unit("u", "TEMPERATURE", "2", "three"), {}},
        {"2", unit("u", "LENGTH", "2") + unit("u", "LENGTH", "3"), {"LENGTH:u"}},
        {"2", unit("u", "LENGTH", "2") + unit("u", "AREA", "3"), {"LENGTH:u", "AREA:u"}},
        {"2", "<unit/><units>" + unit("u", "LENGTH", "2") + "</units>", {}},
        {"2", "<unit><unit>" + unit("u", "LENGTH", "2") + "</unit></unit>", {}},
    };
    for (const auto& row : rows) {
        const QStringList loaded = load(file(row.version, row.unit + good));
        EXPECT_EQ(loaded, row.keys + QStringList("LENGTH:good")) << row.unit.toStdString();
        EXPECT_EQ(m_said, QStringList()) << row.unit.toStdString();
    }
    EXPECT_EQ(load(file("2", unit("u", "LENGTH", "2", "0") + good)), QStringList("LENGTH:good"));
    EXPECT_EQ(m_said, QStringList("KuuUnitCatalog: ignore unit u (A name): unit class LENGTH does "
                                  "not accept a unit with an affine transformation"));
}

TEST_F(KuuUnitCatalogTest, AFileThatIsNoneGivesNothing)
{
    const QByteArray whole = file("2", unit("u", "LENGTH", "2"));
    EXPECT_EQ(load(whole).size(), 1);
    for (const QByteArray& row :
         {QByteArray(), whole.left(whole.size() - 1), QByteArray("<r>" + whole + "</r>")})
        EXPECT_TRUE(load(row).isEmpty()) << row.toStdString();
    catalog().loadUserUnits(m_folder.path());
    catalog().loadUserUnits(m_folder.filePath("none.xml"));
    EXPECT_TRUE(service().getUserUnits().isEmpty());
}

TEST_F(KuuUnitCatalogTest, WhatCannotBeReadWholeIsKeptBeforeItIsReplaced)
{
    const QByteArray kept[] = {"<catalog><unit>", file("3", unit("u", "LENGTH", "2"))};
    for (const QByteArray& bytes : kept) {
        writeBytes(m_path, bytes);
        KuuUnitCatalog::init();
        EXPECT_TRUE(create("Vara").isValid());
        EXPECT_TRUE(read().contains("<version>2</version>"));
        EXPECT_TRUE(create("Vara").isValid()); // and this file is ours
    }
    EXPECT_EQ(QDir(KusFileUser::getDirectory()).entryList(QDir::Files),
              QStringList({"unit_user.xml", "unit_user.xml.old", "unit_user.xml.old2"}));
    m_path += ".old2";
    EXPECT_EQ(read(), kept[1]);
}

TEST_F(KuuUnitCatalogTest, AnErrorOfWritingGoesToTheCaller)
{
    EXPECT_TRUE(QDir().mkpath(m_path)); // a directory in the place of the file
    EXPECT_THROW(create("Vara"), HbeError);
    EXPECT_EQ(keys(), QStringList("LENGTH:Vara"));
    EXPECT_EQ(m_notices, 0);
    EXPECT_THROW(catalog().deleteUnit("Vara"), HbeError);
    EXPECT_TRUE(keys().isEmpty());
}

TEST_F(KuuUnitCatalogTest, TextsOfAnyKindComeBack)
{
    const QString texts[] = {" ",        "\n",      "a\r\nb", "<&>]]>\"'", QString::fromUtf8("½ µ"),
                             "  both  ", "100% %1", "\t"};
    for (const QString& text : texts)
        catalog().createUnit(text, text, C::MASS, S::OTHER, HbuUnitTransfo::linear(2.));
    const QVector<HbuUnit> units = service().getUserUnits();
    EXPECT_EQ(units.size(), int(std::size(texts)));
    forget();
    KuuUnitCatalog::init();
    EXPECT_EQ(service().getUserUnits(), units);

    // What XML cannot hold is replaced, and the file stays readable.
    EXPECT_TRUE(create("bell\a").isValid());
    forget();
    KuuUnitCatalog::init();
    EXPECT_EQ(service().getUserUnits().size(), units.size() + 1);
    EXPECT_EQ(service().getUserUnits().last().getName(), QString("bell") + QChar(0xFFFD));
}
} // namespace
