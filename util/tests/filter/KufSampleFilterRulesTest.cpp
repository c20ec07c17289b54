#include "CapturedLog.h"
#include "KufFilterFixture.h"

#include <util/filter/Kuf.h>

namespace
{
/// Every item as "KEY value label", the default one marked.
template <class Enum>
QStringList rowsOf()
{
    QStringList rows;
    for (const Enum& item : Enum::createIterator())
        rows << QString("%1%2 %3 %4")
                    .arg(item.getKey(), item == Enum() ? "*" : "", QString::number(item.getValue()),
                         item.getLabel());
    return rows;
}

HbdVariableDetails named(const QString& name)
{
    return HbdVariableDetails(name);
}
} // namespace

TEST(KufSampleFilterRules, enumerations)
{
    EXPECT_EQ(rowsOf<KufFilterRuleType>(),
              QStringList({"SELECTION* 0 Selection", "NUMERIC 1 Numeric", "ALPHA 2 Alpha",
                           "ENUM 3 Categorical"}));
    EXPECT_EQ(rowsOf<Numeric::Mode>(),
              QStringList({"IS_DEFINED* 0 V is Defined", "COMPARE 1 V compares to",
                           "RANGE 2 V is in range"}));
    EXPECT_EQ(rowsOf<Operator>(),
              QStringList({"LESS_THAN 0 <", "LESS_OR_EQUAL_TO 1 \u2264", "GREATER_THAN 2 >",
                           "GREATER_OR_EQUAL_TO 3 \u2265", "EQUAL* 4 =", "NOT_EQUAL 5 \u2260"}));
    EXPECT_EQ(rowsOf<Bound>(),
              QStringList({"ITV_LESS_THAN 0 <", "ITV_LESS_OR_EQUAL_TO* 1 \u2264"}));
    EXPECT_EQ(rowsOf<Alpha::Mode>(), QStringList({"CONTAINS* 0 V Contains", "EQUAL_TO 1 V is Equal",
                                                  "NOT_EQUAL_TO 2 V is not Equal"}));
    for (const KufFilterRuleType& type : KufFilterRuleType::createIterator())
        EXPECT_EQ(Kuf::createFromType(type)->getType(), type);

    const QString error = errorOf<HbeProgrammingError>([] { Numeric::Mode::fromKey("ALL"); });
    EXPECT_TRUE(error.contains("' in file 'filter\\KufSampleFilterRules' failed:\n\nALL"));
    EXPECT_TRUE(errorOf<HbeProgrammingError>([] {
                    KufFilterRuleType::fromValue(7);
                }).contains("' in file 'filter\\Kuf' failed:\n\n7 is not valid"));
    const CapturedLog printed;
    Operator::registerItem(5, "NOT_EQUAL", "≠");
    EXPECT_TRUE(printed.texts.value(0).startsWith(
        "KufSampleFilterRuleNumeric::CompareOperator: duplicated item "));
}

TEST(KufSampleFilterRules, descriptionsHoldWhateverTheNamesHold)
{
    const Bound open = Bound::ITV_LESS_THAN;
    const Bound closed = Bound::ITV_LESS_OR_EQUAL_TO;
    const struct {
        QSharedPointer<KufISampleFilterRule> rule;
        QString description, withName, withoutName; // of a variable "%2"
    } rows[] = {
        {Selection().duplicate(), "'%2' is selected", "'%2' is selected", "selected"},
        {Selection(true).duplicate(), "'%2' is not selected", "'%2' is not selected",
         "not selected"},
        {Numeric().duplicate(), "'%2' is defined", "%2 is defined", "constraints: is defined"},
        {Numeric(Operator::LESS_THAN, 0.1).duplicate(), "'%2' is less than 0.1", "%2 < 0.1",
         "constraints: < 0.1"},
        {Numeric(Operator::LESS_OR_EQUAL_TO, 1e-9).duplicate(),
         "'%2' is less than or equal to 1e-09", "%2 ≤ 1e-09", "constraints: ≤ 1e-09"},
        {Numeric(Operator::GREATER_THAN, 3).duplicate(), "'%2' is greater than 3", "%2 > 3",
         "constraints: > 3"},
        {Numeric(Operator::GREATER_OR_EQUAL_TO, 3).duplicate(),
         "'%2' is greater than or equal to 3", "%2 ≥ 3", "constraints: ≥ 3"},
        {Numeric(Operator::EQUAL, 2, 0.5).duplicate(), "'%2' is equal to 2 (+/- 0.5)",
         "%2 = 2 (+/-0.5)", "constraints: = 2 (+/-0.5)"},
        {Numeric(Operator::EQUAL, 2).duplicate(), "'%2' is equal to 2 (+/- 0)", "%2 = 2",
         "constraints: = 2"},
        {Numeric(Operator::NOT_EQUAL, 2).duplicate(), "'%2' is not equal to 2", "%2 != 2",
         "constraints: != 2"},
        {Numeric(0, open, 10, closed).duplicate(),
         "'%2' is greater than 0 and less than or equal to 10", "%2 in (0-10]",
         "constraints: in (0-10]"},
        {Numeric(0, closed, 10, open).duplicate(),
         "'%2' is greater than or equal to 0 and less than 10", "%2 in [0-10)",
         "constraints: in [0-10)"},
        {Alpha(Alpha::Mode::CONTAINS, "%1").duplicate(), "'%2' contains '%1'", "'%1' in '%2'",
         "contains '%1'"},
        {Alpha(Alpha::Mode::EQUAL_TO, "%1").duplicate(), "'%2' is equal to '%1'", "'%2' = '%1'",
         "= '%1'"},
        {Alpha(Alpha::Mode::NOT_EQUAL_TO, "%1").duplicate(), "'%2' is not equal to '%1'",
         "'%2' not= '%1'", "not= '%1'"},
        {Categories().duplicate(), "'%2' == ''", "%2 = ''", "= ''"},
        {Categories({"%1"}).duplicate(), "'%2' equals '%1'", "%2 = %1", "= %1"},
        {Categories({"a", "b", "c"}).duplicate(), "'%2' is one of 'a', 'b', 'c'", "%2 in [a, b, c]",
         "in [a, b, c]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.rule->getDescription(named("%2")), row.description);
        EXPECT_EQ(row.rule->getShortDescription(named("%2"), true), row.withName);
        EXPECT_EQ(row.rule->getShortDescription(named("%2"), false), row.withoutName);
    }
}

TEST(KufSampleFilterRules, everyFieldIsStored)
{
    Numeric numeric(Operator::NOT_EQUAL, 0.1, 1e-300);
    numeric.setLowerBound(-std::numeric_limits<double>::infinity());
    numeric.setLowerOperator(Bound::ITV_LESS_THAN);
    numeric.setUpperBound(7);
    Alpha alpha(Alpha::Mode::EQUAL_TO, "e");
    alpha.setContainedText("c");
    alpha.setNotEqualToText("n");
    const QSharedPointer<KufISampleFilterRule> rules[] = {Selection(true).duplicate(),
                                                          numeric.duplicate(), alpha.duplicate(),
                                                          Categories({"a", "", "b"}).duplicate()};
    QStringList keys;
    for (const auto& rule : rules) {
        const QVariantMap map = rule->toQVariantMap();
        keys << map.keys();
        const auto read = Kuf::createFromType(rule->getType());
        EXPECT_FALSE(read->isEqual(*rule));
        EXPECT_EQ(read->findInvalidFields(map, 2), QStringList());
        read->fromQVariantMap(map, 2);
        EXPECT_TRUE(read->isEqual(*rule));
        for (const QString& key : map.keys()) { // only an operator of an interval may be missing
            QVariantMap damaged = map;
            damaged.remove(key);
            const bool isOptional = key.startsWith("interval") && key.endsWith("Operator");
            EXPECT_EQ(rule->findInvalidFields(damaged, 2),
                      QStringList(key).mid(isOptional ? 1 : 0));
        }
        EXPECT_EQ(rule->findInvalidFields({}, 1).size(), 1);
        for (const int version : {0, 3})
            EXPECT_TRUE(errorOf<HbeProgrammingError>([&] { read->fromQVariantMap(map, version); })
                            .endsWith(QString("' in file 'filter\\KufSampleFilterRules' failed:"
                                              "\n\nproviding version = %1")
                                          .arg(version)));
    }
    EXPECT_EQ(keys, QStringList({"invert", "compareOperator", "compareTolerance", "compareValue",
                                 "intervalLower", "intervalLowerOperator", "intervalUpper",
                                 "intervalUpperOperator", "mode", "contains", "equalTo", "mode",
                                 "notEqualTo", "selectedList"}));
    EXPECT_EQ(numeric.toQVariantMap()["compareOperator"].toString(), "NOT_EQUAL");
}

TEST(KufSampleFilterRules, whatIsMissingOrUnknownHasItsDefault)
{
    const CapturedLog printed;
    Numeric rule(1, Bound::ITV_LESS_OR_EQUAL_TO, 2, Bound::ITV_LESS_OR_EQUAL_TO);
    rule.fromQVariantMap({{"other", 1}}, 2);
    Numeric expected;
    expected.setLowerOperator(Bound::ITV_LESS_THAN);
    expected.setUpperOperator(Bound::ITV_LESS_THAN);
    EXPECT_EQ(rule, expected);
    EXPECT_EQ(printed.texts, QStringList());

    const QVariantMap damaged = {{"mode", "ALL"},
                                 {"compareOperator", 3},
                                 {"compareValue", "1,5"},
                                 {"intervalLowerOperator", ""},
                                 {"intervalUpper", QVariantList{1}}};
    expected.setLowerOperator(Bound::ITV_LESS_OR_EQUAL_TO);
    const QStringList invalid = rule.findInvalidFields(damaged, 2);
    EXPECT_EQ(invalid.mid(0, 5), QStringList({"mode", "compareOperator", "compareValue",
                                              "intervalLowerOperator", "intervalUpper"}));
    rule.fromQVariantMap(damaged, 2);
    EXPECT_EQ(rule, expected);
    EXPECT_EQ(printed.texts.size(), damaged.size());
}

TEST(KufSampleFilterRules, oldNumericRules)
{
    const QVariantMap numbers = {{"greater_than", 1.5}, {"less_than", 2.5}, {"equal_to", "3.5"},
                                 {"range_min", 4.5},    {"range_max", 5.5}, {"tolerance", 0.25}};
    const Bound closed = Bound::ITV_LESS_OR_EQUAL_TO;
    const Numeric before(Operator::NOT_EQUAL, 9.0, 8.0);
    const Numeric expected[] = {Numeric(),
                                Numeric(Operator::GREATER_THAN, 1.5),
                                Numeric(Operator::LESS_THAN, 2.5),
                                Numeric(Operator::EQUAL, 3.5, 0.25),
                                Numeric(4.5, closed, 5.5, closed),
                                Numeric(4.5, closed, 5.5, closed),
                                Numeric(Operator::NOT_EQUAL, 9.0, 0.25),
                                Numeric(Operator::NOT_EQUAL, 9.0, 0.25)};
    for (int mode = 0; mode < 8; ++mode) {
        QVariantMap map = numbers;
        map["mode"] = mode;
        Numeric rule = before;
        rule.fromQVariantMap(map, 1);
        EXPECT_TRUE(rule.isSameCondition(expected[mode])) << mode;
        EXPECT_EQ(rule.getTolerance(), 0.25);
    }
    Numeric rule = before;
    rule.fromQVariantMap({{"mode", 3}}, 1);
    EXPECT_TRUE(rule.isSameCondition(Numeric(Operator::EQUAL, 0.0, 0.0)));
}

TEST(KufSampleFilterRules, oldTextAndCategoryRules)
{
    QVariantMap map = {{"contains", "c"}, {"equal_to", "e"}, {"not_equal_to", "n"}};
    for (const QVariant& mode : {QVariant(2), QVariant("2"), QVariant("NOT_EQUAL_TO")}) {
        map["mode"] = mode;
        Alpha rule;
        rule.fromQVariantMap(map, 1);
        EXPECT_EQ(rule.getMode(), Alpha::Mode::NOT_EQUAL_TO);
        EXPECT_EQ(rule.getContainedText() + rule.getEqualToText() + rule.getNotEqualToText(),
                  "cen");
    }
    map["mode"] = 3;
    EXPECT_EQ(Alpha().findInvalidFields(map, 1), QStringList{"mode"});
    Categories rule;
    rule.fromQVariantMap({{"selected_list", QStringList{"a", "b"}}}, 1);
    EXPECT_EQ(rule.getSelectedList(), QStringList({"a", "b"}));
}
