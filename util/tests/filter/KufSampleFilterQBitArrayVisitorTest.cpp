#include "KufFilterFixture.h"

#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterValidator.h>

#include <QtCore/QDateTime>

namespace
{
/// The templates of the Python form, word by word, for one sample; NaN stands for undefined.
bool passesNumeric(const Numeric& rule, long double v)
{
    const double value = rule.getCompareValue();
    const double low = value - rule.getTolerance();
    const double high = value + rule.getTolerance();
    if (rule.getMode() == Numeric::Mode::IS_DEFINED)
        return !(v != v);
    if (rule.getMode() == Numeric::Mode::RANGE) {
        const bool isAbove = rule.getLowerOperator() == Bound::ITV_LESS_THAN
                                 ? rule.getLowerBound() < v
                                 : rule.getLowerBound() <= v;
        return isAbove &&
               (rule.getUpperOperator() == Bound::ITV_LESS_THAN ? v < rule.getUpperBound()
                                                                : v <= rule.getUpperBound());
    }
    const QString key = rule.getCompareOperator().getKey();
    return key == "LESS_THAN"             ? v < value
           : key == "LESS_OR_EQUAL_TO"    ? v <= value
           : key == "GREATER_THAN"        ? v > value
           : key == "GREATER_OR_EQUAL_TO" ? v >= value
           : key == "EQUAL"               ? v >= low && v <= high
                                          : v < low || v > high;
}

bool passes(const KufISampleFilterRule& rule, const HbdAVariable& column, int rank)
{
    const QVariant cell = column.getVariant(rank);
    if (const auto* numeric = dynamic_cast<const Numeric*>(&rule)) {
        bool isNumber = false;
        const bool isInteger = cell.type() == QVariant::LongLong || cell.type() == QVariant::Int;
        const long double number = isInteger ? static_cast<long double>(cell.toLongLong(&isNumber))
                                             : static_cast<long double>(cell.toDouble(&isNumber));
        const bool isDate = cell.type() == QVariant::DateTime;
        const long double date = static_cast<long double>(cell.toDateTime().toMSecsSinceEpoch());
        const long double undefined = std::numeric_limits<long double>::quiet_NaN();
        if (numeric->getMode() == Numeric::Mode::IS_DEFINED)
            return cell.isValid();
        return passesNumeric(*numeric, !cell.isValid() ? undefined : isDate ? date : number);
    }
    if (const auto* alpha = dynamic_cast<const Alpha*>(&rule)) {
        const QString text = cell.toString();
        if (!cell.isValid())
            return false;
        return alpha->getMode() == Alpha::Mode::CONTAINS   ? text.contains(alpha->getText())
               : alpha->getMode() == Alpha::Mode::EQUAL_TO ? text == alpha->getText()
                                                           : text != alpha->getText();
    }
    if (const auto* names = dynamic_cast<const Categories*>(&rule)) {
        const QString label = dynamic_cast<const HbdVariableEnum&>(column).getLabel(rank);
        return !label.isNull() && names->getSelectedList().contains(label);
    }
    return cell.toBool() != dynamic_cast<const Selection&>(rule).getInvertSelection();
}

QBitArray select(const KufSampleFilter& filter, const KudADataset& dataset)
{
    return KufSampleFilterQBitArrayVisitor(&filter, &dataset, filter.getVariables()).getSelection();
}

/// A filter of one rule, without the machinery of combinations.
QBitArray plainSelect(const KufSampleFilter& filter, int index, const KudADataset& dataset)
{
    const HbdAVariable& column = *dataset.readValues(filter.getVariable(index));
    QBitArray bits(column.getCount());
    for (int i = 0; i < bits.size(); ++i)
        bits.setBit(i, passes(*filter.getRule(index), column, i));
    return bits;
}

} // namespace

TEST_F(KufFilterData, selectsWhatAPlainLoopSelects)
{
    for (int round = 0; round < 400; ++round) {
        KufSampleFilter filter = randomFilter();
        for (int i = 0; i < filter.getRuleCount(); ++i) {
            const QBitArray expected = plainSelect(filter, i, points);
            filter.setCombination(KufSampleFilter::getRuleName(i));
            ASSERT_EQ(select(filter, points), expected)
                << filter.getVariable(i).getFullVariableName().toStdString() << ' '
                << filter.getRule(i)->getDescription(HbdVariableDetails("V")).toStdString();
        }
    }
}

// A million samples are the work of several threads.
TEST(KufSampleFilterQBitArrayVisitor, everyLengthOfABlockIsWhole)
{
    for (const int count : {0, 1, 63, 64, 65, 8191, 8192, 8193, 20000, 1000000}) {
        KudMemoryDatasetPoint points("p");
        HbdDataTable table;
        auto variable = std::make_unique<HbdVariableReal>(HbdVariableDetails("v"));
        for (int i = 0; i < count; ++i)
            variable->append(i % 7);
        table.addVariable(std::move(variable));
        points.setDataTable(std::move(table));
        KufSampleFilter filter;
        filter.addRule(onPoints("v"), Numeric(Operator::EQUAL, 3));
        filter.addRule(onPoints("v"), Numeric(Operator::GREATER_THAN, 4));
        filter.setCombination("not (R1 or R2)");
        const QBitArray bits = select(filter, points);
        ASSERT_EQ(bits.size(), count);
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(bits.testBit(i), i % 7 != 3 && i % 7 <= 4) << i << " of " << count;
        const KufSampleFilter none;
        EXPECT_EQ(select(none, points), QBitArray(count, true));
    }
}

TEST_F(KufFilterData, aFilterThatDoesNotApplyIsRefused)
{
    const auto variables = [](const char* name) {
        return QList<KudDatasetVariable>{onPoints("zinc"), onPoints(name)};
    };
    const struct {
        const char* name;
        QSharedPointer<KufISampleFilterRule> rule;
        QString fault;
    } rows[] = {
        {"gone", Numeric().duplicate(), "R2: the variable 'gone' is not in the dataset."},
        {"name", Numeric(Operator::EQUAL, 1).duplicate(),
         "R2: the variable 'name' is not a number."},
        {"land use", Numeric(0, Bound(), 1, Bound()).duplicate(),
         "R2: the variable 'land use' is not a number."},
        {"zinc", Numeric(Operator::LESS_THAN, HbbGlobal::D_FFFF).duplicate(),
         "R2: the variable 'zinc' is compared with an undefined number."},
        {"zinc", Numeric(0, Bound(), std::nan(""), Bound()).duplicate(),
         "R2: the variable 'zinc' is compared with an undefined number."},
        {"count", Selection().duplicate(), "R2: the variable 'count' is not a selection."},
        {"land use", Alpha().duplicate(), "R2: the variable 'land use' is not a text."},
        {"name", Categories({"a"}).duplicate(), "R2: the variable 'name' is not a category."},
        {"land use", Categories({"Ag", "Xx"}).duplicate(),
         "R2: the variable 'land use' has no category 'Xx'; it has 'Ag', 'W', 'Ah', 'a b', '-1'."},
        {"", Numeric().duplicate(), "R2: the rule has no variable."},
    };
    for (const auto& row : rows) {
        KufSampleFilter filter;
        filter.addRule(onPoints("zinc"), Numeric());
        filter.addRule(onPoints(row.name), *row.rule);
        filter.setCombination("R1"); // a rule that is not in use counts, too
        const KufSampleFilterValidator validator(&filter, &points, variables(row.name));
        EXPECT_EQ(validator.getErrors(), QStringList{row.fault});
        EXPECT_EQ(errorOf<HbeUserError>([&] { select(filter, points); }), row.fault);
        EXPECT_EQ(errorOf<HbeUserError>([&] {
                      KufSampleFilterPythonVisitor(&filter, &points, filter.getVariables(), "d");
                  }),
                  row.fault);
    }
}

TEST_F(KufFilterData, variablesOfAnotherSupportAreRefused)
{
    KufSampleFilter filter;
    filter.addRule(onPoints("zinc"), Numeric());
    filter.addRule(KudDatasetVariable::createVariable("Grid", "zinc"), Numeric());
    EXPECT_EQ(errorOf<HbeUserError>([&] { select(filter, points); }),
              "Cannot apply filters from different supports.");
    // The visitor's list holds, whatever the rules were made for.
    const QList<KudDatasetVariable> moved = {onPoints("zinc"), onPoints("count")};
    EXPECT_EQ(KufSampleFilterQBitArrayVisitor(&filter, &points, moved).getSelection().size(),
              COUNT);
    EXPECT_EQ(KufSampleFilterValidator(&filter, &points, moved.mid(0, 1)).getErrors(),
              QStringList{"R2: the rule has no variable."});
    EXPECT_EQ(KufSampleFilterValidator(&filter, nullptr, moved).getErrors(),
              QStringList{"There is no dataset to filter."});
    filter.setCombination("R1 and");
    EXPECT_EQ(KufSampleFilterValidator(&filter, &points, moved).getErrors().size(), 1);
    EXPECT_THROW(select(filter, points), HbeUserError);
}
