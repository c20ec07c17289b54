#include <basic/base/HbbContainer.h>
#include <basic/base/HbbHtml.h>
#include <basic/base/HbbOrderedMap.h>
#include <basic/base/HbbTags.h>

TEST(HbbContainer, aUniqueNameIsTheFirstFreeOne)
{
    const struct {
        const char* name;
        QStringList taken;
        const char* unique;
    } rows[] = {
        {"a", {}, "a"},
        {"a", {"b", "A"}, "a"},
        {"a", {"a"}, "a (1)"},
        {"a", {"a", "a (1)", "a (3)"}, "a (2)"},
        {"a (1)", {"a (1)"}, "a (2)"},
        {"a (9)", {"a (9)", "a"}, "a (10)"},
        {"a (0)", {"a (0)"}, "a (0) (1)"},
        {"a(1)", {"a(1)"}, "a(1) (1)"},
        {"", {""}, " (1)"},
        {"a (99999999999)", {"a (99999999999)"}, "a (99999999999) (1)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(HbbContainer::getUniqueName(row.name, row.taken), row.unique);
}

TEST(HbbOrderedMap, comparesInOrderAndHasDefaults)
{
    HbbOrderedMap<QString, int> map{{"z", 1}, {"a", 2}};
    map["new"] += 5;
    EXPECT_EQ(QStringList(map.keys()), QStringList({"z", "a", "new"}));
    EXPECT_EQ(map.values(), QList<int>({1, 2, 5}));
    EXPECT_EQ(map.value("none", -1), -1);
    EXPECT_EQ(map.find("none"), nullptr);
    EXPECT_NE(map, (HbbOrderedMap<QString, int>{{"a", 2}, {"z", 1}, {"new", 5}}));
}

TEST(HbbOrderedMap, copiesAreIndependentAndMovesKeepTheIndex)
{
    HbbOrderedMap<int, QString> map;
    for (int i = 0; i < 100; ++i)
        map.insert(i * 7 % 101, QString::number(i));
    HbbOrderedMap<int, QString> copy = map;
    EXPECT_EQ(copy, map);
    copy[7] = "changed";
    copy.remove(14);
    EXPECT_EQ(map.value(7), "1");
    EXPECT_TRUE(map.contains(14));
    const HbbOrderedMap<int, QString> moved = std::move(copy);
    EXPECT_EQ(moved.value(7), "changed");
    EXPECT_EQ(moved.size(), 99);
}

TEST(HbbOrderedMap, agreesWithAListOfPairs)
{
    std::mt19937 random(3);
    HbbOrderedMap<int, int> map;
    std::vector<std::pair<int, int>> reference;
    for (int step = 0; step < 20000; ++step) {
        const int key = static_cast<int>(random() % 60);
        const auto found = std::find_if(reference.begin(), reference.end(),
                                        [key](const auto& entry) { return entry.first == key; });
        if (random() % 3 == 0) {
            EXPECT_EQ(map.remove(key), found != reference.end());
            if (found != reference.end())
                reference.erase(found);
        } else {
            map.insert(key, step);
            if (found != reference.end())
                found->second = step;
            else
                reference.emplace_back(key, step);
        }
        ASSERT_TRUE(std::equal(map.begin(), map.end(), reference.begin(), reference.end(),
                               [](const auto& a, const auto& b) {
                                   return a.first == b.first && a.second == b.second;
                               }));
    }
}

TEST(HbbTags, isASetThatRemembersItsOrder)
{
    HbbTags tags{"b", "a", "b", ""};
    EXPECT_EQ(tags.toStringList(), QStringList({"b", "a"}));
    EXPECT_FALSE(tags.add("a"));
    EXPECT_TRUE(tags.add("c"));
    EXPECT_EQ(tags, HbbTags({"c", "b", "a"}));
    EXPECT_NE(tags, HbbTags({"c", "b"}));
    EXPECT_TRUE(tags.intersects(HbbTags({"x", "a"})));
    EXPECT_FALSE(tags.intersects(HbbTags({"x", "A"})));
    EXPECT_FALSE(tags.intersects(HbbTags()));
    EXPECT_TRUE(tags.contains(HbbTags()));
    tags.add(tags);
    EXPECT_EQ(tags.count(), 3);
    tags.remove(tags);
    EXPECT_TRUE(tags.isEmpty());
}

TEST(HbbHtml, onlyEscapeTakesPlainText)
{
    EXPECT_EQ(HbbHtml::bold(HbbHtml::escape("a<b> & \"c\"")),
              "<b>a&lt;b&gt; &amp; &quot;c&quot;</b>");
    EXPECT_EQ(HbbHtml::lines({HbbHtml::italic("x"), "y"}), "<i>x</i><br/>y");
    EXPECT_EQ(HbbHtml::paragraph("x") + HbbHtml::bulletList({"1", "2"}),
              "<p>x</p><ul><li>1</li><li>2</li></ul>");
}
