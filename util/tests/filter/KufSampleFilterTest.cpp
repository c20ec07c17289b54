#include "CapturedLog.h"
#include "KufFilterFixture.h"

#include <util/filter/KufSampleFilterDirectory.h>
#include <util/xml/KuxXmlMementoFile.h>

namespace
{
KufSampleFilter sampleFilter(const QString& name)
{
    KufSampleFilter filter(name);
    filter.addRule(KudDatasetVariable::createComponent("Points", "Pb", "1", "x"),
                   Numeric(Operator::EQUAL, 0.1, 1e-7));
    filter.addRule(onPoints("name"), Alpha(Alpha::Mode::CONTAINS, " O'Hara\n"));
    filter.addRule(onPoints("land use"), Categories({"", "a b"}));
    filter.addRule(onPoints("selected"), Selection(true));
    filter.setCombination("not R1 or (R2 and R3) or R4");
    return filter;
}
} // namespace

TEST(KufSampleFilter, editsItsRules)
{
    KufSampleFilter filter = sampleFilter("f");
    KufSampleFilter copy = filter;
    EXPECT_EQ(copy.getId(), filter.getId());
    EXPECT_TRUE(copy.isEqual(filter));
    EXPECT_NE(copy.getRule(0), filter.getRule(0));
    EXPECT_EQ(filter.getRule(4), nullptr);
    EXPECT_EQ(filter.getRule(-1), nullptr);
    EXPECT_EQ(filter.getVariable(4), KudDatasetVariable());

    EXPECT_FALSE(copy.setRule(4, onPoints("zinc"), Numeric()));
    EXPECT_TRUE(copy.setRule(3, onPoints("zinc"), Numeric()));
    EXPECT_FALSE(copy.isEqual(filter));
    EXPECT_FALSE(copy.removeRule(4));
    EXPECT_TRUE(copy.removeRule(0));
    EXPECT_EQ(copy.getVariables(), QList<KudDatasetVariable>(
                                       {onPoints("name"), onPoints("land use"), onPoints("zinc")}));
    EXPECT_EQ(copy.getCombination(), "");
}

TEST(KufSampleFilter, aDamagedFilterIsRefusedAndChangesNothing)
{
    const QVariantMap good = sampleFilter("f").toQVariantMap();
    const auto changed = [&](const QString& key, const QVariant& value, bool ofFields = false) {
        QVariantMap map = good;
        QVariantList rules = map["rules"].toList();
        QVariantMap rule = rules[0].toMap();
        QVariantMap fields = rule["rule"].toMap();
        QVariantMap& target = ofFields ? fields : rule;
        if (value.isValid())
            target[key] = value;
        else
            target.remove(key);
        if (ofFields)
            rule["rule"] = fields;
        rules[0] = rule;
        map["rules"] = rules;
        return map;
    };
    QVariantMap noRules = good;
    noRules.remove("rules");
    QVariantMap textRules = good;
    textRules["rules"] = "R1";
    QVariantMap textRule = good;
    textRule["rules"] = QVariantList{"zinc > 3"};
    const struct {
        QVariantMap map;
        QString error;
    } rows[] = {
        {{}, "The sample filter: the value of 'name' is missing or not valid."},
        {noRules, "The sample filter: the value of 'rules' is missing or not valid."},
        {textRules, "The sample filter: the value of 'rules' is missing or not valid."},
        {textRule, "R1: this is no rule."},
        {changed("type", "NUMBER"), "R1: the value of 'type' is missing or not valid."},
        {changed("variable", QVariant()), "R1: the value of 'variable' is missing or not valid."},
        {changed("rule", 1), "R1: the value of 'rule' is missing or not valid."},
        {changed("version", QVariant()), "R1: the value of 'version' is missing or not valid."},
        {changed("mode", "ALL", true),
         "R1: the value of 'mode' is missing or not valid, in the rule on the variable 'Pb[1].x'."},
    };
    KufSampleFilter filter = sampleFilter("f");
    const KufSampleFilter before = filter;
    for (const auto& row : rows) {
        EXPECT_EQ(errorOf<HbeUserError>([&] { filter.fromQVariantMap(row.map); }), row.error);
        EXPECT_TRUE(filter.isEqual(before));
    }
    filter.fromQVariantMap(changed("colour", "red")); // what is not known is passed over
    EXPECT_TRUE(filter.isEqual(before));
}

TEST(KufSampleFilter, oldRulesAreRead)
{
    QVariantMap map = sampleFilter("f").toQVariantMap();
    QVariantList rules = map["rules"].toList();
    QVariantMap rule = rules[0].toMap();
    rule["version"] = "1";
    rule["rule"] = QVariantMap{{"mode", "5"}, {"range_min", "1"}, {"range_max", "2.5"}};
    map["rules"] = QVariantList{rule};
    KufSampleFilter filter;
    filter.fromQVariantMap(map);
    EXPECT_TRUE(filter.getRule(0)->isEqual(
        Numeric(1, Bound::ITV_LESS_OR_EQUAL_TO, 2.5, Bound::ITV_LESS_OR_EQUAL_TO)));
}

TEST(KufSampleFilterDirectory, keepsFiltersByName)
{
    const QTemporaryDir folder;
    const KufSampleFilterDirectory directory(folder.path());
    const KufSampleFilter filter = sampleFilter("zinc & lead");
    directory.save(filter);
    directory.save(KufSampleFilter("empty"));
    EXPECT_EQ(directory.getIds().size(), 2);
    const KufSampleFilter read = directory.read("zinc & lead");
    EXPECT_TRUE(read.isEqual(filter));
    EXPECT_EQ(read.getId(), filter.getId());
    EXPECT_TRUE(directory.read("empty").isEqual(KufSampleFilter("empty")));

    // Another filter of the name does not come beside it, but may take its place.
    KufSampleFilter other("zinc & lead");
    EXPECT_THROW(directory.save(other), HbeUserError);
    directory.replace(other);
    EXPECT_TRUE(directory.read("zinc & lead").isEqual(other));
    EXPECT_EQ(directory.read("zinc & lead").getId(), filter.getId());
    other.setName("");
    EXPECT_THROW(directory.save(other), HbeUserError);
    EXPECT_TRUE(directory.remove(filter.getId()));
    EXPECT_FALSE(directory.remove(filter.getId()));
    EXPECT_EQ(
        errorOf<HbeUserError>([&] { directory.read(QString("zinc & lead")); }),
        QString("'%1' holds no sample filter 'zinc & lead'. It holds: empty.").arg(folder.path()));
    EXPECT_THROW(KufSampleFilterDirectory(folder.filePath("none")).getNames(), HbeUserError);

    // With another character in its place the text would select other samples.
    other.setName("other");
    other.addRule(onPoints("name"),
                  Alpha(Alpha::Mode::CONTAINS, QString("\U0001F30Ba") + QChar(1)));
    EXPECT_TRUE(errorOf<HbeUserError>([&] { directory.save(other); })
                    .startsWith("The sample filter cannot be saved: no file can hold the character "
                                "U+0001 at 4 of the text '"));
}

// A damaged filter is found by its name and not by that of another: reading says what is wrong.
TEST(KufSampleFilterDirectory, aDamagedFilterIsFoundAndNotRead)
{
    const QTemporaryDir folder;
    const KufSampleFilterDirectory directory(folder.path());
    directory.save(sampleFilter("good"));
    KuuMemento bad(KuuId::generate("SampleFilter"));
    bad.setField("name", "bad");
    KuuMemento nameless(KuuId::generate("SampleFilter"));
    KuxXmlMementoFile::save(QDir(folder.path()), {bad, nameless});
    const CapturedLog log;
    QStringList names = directory.getNames();
    names.sort();
    EXPECT_EQ(names, (QStringList{"bad", "good"}));
    EXPECT_TRUE(errorOf<HbeUserError>([&] {
                    directory.read(QString("bad"));
                }).endsWith("': The sample filter: the value of 'rules' is missing or not valid."));
    EXPECT_THROW(directory.save(KufSampleFilter("bad")), HbeUserError);
    directory.replace(KufSampleFilter("bad"));
    EXPECT_EQ(directory.read(bad.getId()).getRuleCount(), 0);
    for (const QString& warning : log.texts)
        EXPECT_TRUE(warning.contains(nameless.getId().getUuid()));
    EXPECT_FALSE(log.texts.isEmpty());
}
