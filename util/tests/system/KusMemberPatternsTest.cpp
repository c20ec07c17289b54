#include <util/system/KusMemberPatterns.h>

#include "ErrorText.h"

#include <basic/error/HbeUserError.h>

namespace
{
struct Case {
    const char* pattern;
    QByteArray name;
    bool isMatch;
};
} // namespace

TEST(KusMemberPatternsTest, MatchesWholeElements)
{
    const std::vector<Case> rows{
        {"*.tmp", "survey/a.tmp", true},
        {"*.tmp", "a.tmp", true},
        {"*.tmp", "a.tmp2", false},
        {"*.tmp", "x.tmp/inside", true},
        {"cache", "survey/cache", true},
        {"cache", "survey/cache/a/b", true},
        {"cache/", "survey/cache/a", true},
        {"cache", "survey/mycache", false},
        {"cache", "survey/cache2/a", false},
        {"report/*.txt", "survey/report/a.txt", true},
        {"report/*.txt", "survey/report/sub/a.txt", false},
        {"report/**/*.txt", "survey/report/sub/deep/a.txt", true},
        {"report/**/*.txt", "survey/report/a.txt", true},
        {"report/**", "survey/report/sub/a", true},
        {"report/**", "survey/report", false},
        {"a**b", "axx/yyb", true},
        {"/survey/a", "survey/a", true},
        {"/survey/a", "./survey//a", true},
        {"/a", "survey/a", false},
        {"?.txt", "é.txt", true},
        {"?\U0001f642*", "\U0001f5fa\U0001f642.txt", true},
        {"?.txt", "ab.txt", false},
        {"a?b", "a/b", false},
        {"[a-c]1", "b1", true},
        {"[!a-c]1", "b1", false},
        {"[!a-c]1", "d1", true},
        {"x[!a]y", "x/y", false},
        {"[]]", "]", true},
        {"a+(b).$", "a+(b).$", true},
        {"a.b", "axb", false},
        {"A", "a", false},
        {"*", "a\nb", true},
    };
    for (const Case& row : rows)
        EXPECT_EQ(KusMemberPatterns({row.pattern}).matches(row.name), row.isMatch)
            << row.pattern << ' ' << row.name.toStdString();
}

TEST(KusMemberPatternsTest, RefusesWhatMakesNoSense)
{
    for (const char* pattern : {"", "/", "//", "a//b", "../a", "a/.", "[a", "[z-a]", "[a/b]"})
        EXPECT_TRUE(errorOf<HbeUserError>([&] {
                        KusMemberPatterns({pattern});
                    }).startsWith(QStringLiteral("'%1' is no pattern of names: ").arg(pattern)))
            << pattern;
}

TEST(KusMemberPatternsTest, TellsWhatMatchedNothing)
{
    KusMemberPatterns patterns({"a", "b*", "c"});
    EXPECT_TRUE(patterns.matchesAndNotes("x/bcd"));
    EXPECT_TRUE(patterns.matchesAndNotes("c"));
    EXPECT_FALSE(patterns.matchesAndNotes("d"));
    EXPECT_EQ(patterns.getUnused(), QStringList("a"));
    EXPECT_FALSE(KusMemberPatterns().matches("a"));
}
