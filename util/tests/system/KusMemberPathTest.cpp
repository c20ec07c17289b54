#include <util/system/KusMemberPath.h>

namespace
{
struct Fault {
    QByteArray name;
    const char* fault;
};

const char DRIVE[] = "Its name begins with a drive.";
} // namespace

// Those that lead out of a target stand among the hostile archives, one by one.
TEST(KusMemberPathTest, FindsFaults)
{
    const std::vector<Fault> rows{
        {"a", ""},           {"", ""},
        {".", ""},           {"./a//b/", ""},
        {"..a/b../...", ""}, {"a:b", DRIVE},
        {"ab:c", ""},        {"x/C:y", ""},
        {"Zä日.txt", ""},    {"a/b\\..", "Its name leads upwards with \"..\"."},
        {"./C:/a", DRIVE},   {"a/" + QByteArray(255, 'x'), ""},
    };
    for (const Fault& row : rows)
        EXPECT_EQ(KusMemberPath::findFault(row.name), row.fault) << row.name.toStdString();
}

TEST(KusMemberPathTest, SplitsIntoElements)
{
    EXPECT_EQ(KusMemberPath::split("./a//b/./c/"), (QList<QByteArray>{"a", "b", "c"}));
    EXPECT_EQ(KusMemberPath::split("./"), QList<QByteArray>());
}

TEST(KusMemberPathTest, FoldsWhatADiskMayTakeForOne)
{
    const auto hash = [](const QByteArray& name) { return KusMemberPath::getFoldedHash(name); };
    for (const auto& [one, other] : {std::pair("Ab/C.TXT", "./aB//c.txt/"), // case
                                     std::pair("ÄÉ", "äé"), std::pair("e\xcc\x81", "\xc3\xa9"),
                                     std::pair("E\xcc\x81", "\xc3\xa9"), // composition
                                     std::pair("\xe2\x84\xaa", "k"),     // the sign of Kelvin
                                     std::pair("straße", "STRASSE")})
        EXPECT_EQ(hash(one), hash(other)) << one << ' ' << other;
    for (const auto& [one, other] : {std::pair("a/b", "ab"), std::pair("ab/c", "a/bc"),
                                     std::pair("e", "é"), std::pair("a\xff", "a\xfe")})
        EXPECT_NE(hash(one), hash(other)) << one << ' ' << other;
}

TEST(KusMemberPathTest, ShowsNamesThatCannotSteerATerminal)
{
    EXPECT_EQ(KusMemberPath::getShownText("a\x1b[2J\nä"), QStringLiteral("a\uFFFD[2J\uFFFDä"));
    EXPECT_LT(KusMemberPath::getShownText(QByteArray(1 << 20, 'x')).size(), 6000);
}
