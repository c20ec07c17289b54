#include "KudDataTableFixture.h"

#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QStyledItemDelegate>

namespace
{
/// A table with a column of each type and two samples, of which the second is undefined.
class KudEditedTable : public testing::Test
{
protected:
    KudEditedTable()
    {
        for (const HbdEVarType type : HbdEVarType::createIterator()) {
            const auto made = HbdAVariable::create(HbdVariableDetails(type.getKey(), type));
            if (auto* categories = dynamic_cast<HbdVariableEnum*>(made.get())) {
                HbdEnumCatalog catalog;
                catalog.findOrAdd("granite");
                catalog.findOrAdd("schist");
                categories->setCatalog(catalog);
            }
            made->resize(2);
            table.addVariable(made->clone());
        }
        const QDateTime moment(QDate(2021, 3, 28), QTime(2, 30, 0, 125), Qt::UTC);
        int column = 0;
        for (const QVariant& value :
             {QVariant(1234567.0625), QVariant(0.1F), QVariant((qint64(1) << 60) + 1),
              QVariant(" a\tb"), QVariant("schist"), QVariant(QColor("#102030")), QVariant(7),
              QVariant(1), QVariant(moment)})
            table.updateValue(table.getVariableAt(column++), 0, value);
    }
    ~KudEditedTable() override { QLocale::setDefault(before); }

    QVariant cell(int columnOfCell, int rank) const
    {
        return table.readValues(table.getVariableAt(columnOfCell))->getVariant(rank);
    }

    const QLocale before;
    KudMemoryDataTable table{"Points"};
    KudTableModel& model = *table.getModel();
};
} // namespace

TEST_F(KudEditedTable, ShowsEveryUndefinedCellAsNotAvailable)
{
    for (int column = 0; column < model.columnCount(); ++column) {
        if (!cell(column, 1).isValid()) {
            EXPECT_EQ(model.index(1, column).data(), "N/A") << column;
        }
    }
    EXPECT_EQ(model.index(0, HbdEVarType::E_DATE).data(), "2021-03-28T02:30:00.125Z");
    EXPECT_EQ(model.index(0, HbdEVarType::E_REAL).data(Qt::EditRole), "1234567.0625");
}

/// Qt's editors, opened and closed without a key: some round, some know local times only.
TEST_F(KudEditedTable, KeepsWhatAnEditorOpensAndCloses)
{
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "America/St_Johns");
    QStyledItemDelegate delegate;
    for (int rank = 0; rank < 2; ++rank) {
        for (int column = 0; column < model.columnCount(); ++column) {
            const QModelIndex index = model.index(rank, column);
            const QVariant value = cell(column, rank);
            const std::unique_ptr<QWidget> editor(delegate.createEditor(nullptr, {}, index));
            ASSERT_NE(editor, nullptr);
            delegate.setEditorData(editor.get(), index);
            delegate.setModelData(editor.get(), &model, index);
            EXPECT_EQ(cell(column, rank), value) << column << ' ' << rank;
        }
    }
    qputenv("TZ", zone);
}

TEST_F(KudEditedTable, KeepsEachDigitThroughUnits)
{
    HbuUnitService& units = HbuUnitService::getInstance();
    HbdVariableDetails details = table.getDetails(table.getVariableAt(0));
    details.unit = units.getUnit(HbuEUnitClass::LENGTH, "m");
    details.displayUnit = units.getUnit(HbuEUnitClass::LENGTH, "ft");
    ASSERT_TRUE(details.unit.isValid() && details.displayUnit.isValid());
    table.setDetails(table.getVariableAt(0), details);
    std::mt19937 random(3);
    std::lognormal_distribution<double> values(5.0, 9.0);
    for (int i = 0; i < 1000; ++i) {
        const double value = values(random);
        table.updateValue(table.getVariableAt(0), 0, value);
        const QModelIndex index = model.index(0, 0);
        ASSERT_TRUE(model.setData(index, index.data(Qt::EditRole)));
        ASSERT_EQ(cell(0, 0).toDouble(), value);
    }

    // An integer is a real in another unit.
    details = table.getDetails(table.getVariableAt(HbdEVarType::E_INTEGER));
    details.unit = units.getUnit(HbuEUnitClass::LENGTH, "cm");
    table.setDetails(table.getVariableAt(HbdEVarType::E_INTEGER),
                     details.shownIn(units.getUnit(HbuEUnitClass::LENGTH, "m")));
    const QModelIndex index = model.index(0, HbdEVarType::E_INTEGER);
    EXPECT_TRUE(model.setData(index, "0.07"));
    EXPECT_EQ(cell(HbdEVarType::E_INTEGER, 0), 7);
    EXPECT_EQ(index.data(), "0.07");
    EXPECT_FALSE(model.setData(index, "0.075"));
}

TEST_F(KudEditedTable, TakesWhatThePersonMeansAndRefusesTheRest)
{
    constexpr bool REFUSED = false;
    const QDateTime midnight(QDate(2021, 3, 1), QTime(0, 0), Qt::UTC);
    const struct {
        HbdEVarType::EValue type;
        QLocale::Language language;
        QVariant typed;
        bool accepted;
        QVariant stored;
    } cases[] = {
        {HbdEVarType::E_REAL, QLocale::German, "1,25", true, 1.25},
        {HbdEVarType::E_REAL, QLocale::German, " 1.25 ", true, 1.25},
        {HbdEVarType::E_REAL, QLocale::German, "1.234,5", REFUSED, {}},
        {HbdEVarType::E_REAL, QLocale::English, "1,234", REFUSED, {}},
        {HbdEVarType::E_REAL, QLocale::French, "1 234", REFUSED, {}},
        {HbdEVarType::E_REAL, QLocale::English, "nan", REFUSED, {}},
        {HbdEVarType::E_REAL, QLocale::English, "1e300", REFUSED, {}}, // stands for undefined
        {HbdEVarType::E_REAL, QLocale::English, "-1e-3", true, -1e-3},
        {HbdEVarType::E_REAL_32, QLocale::English, "1e39", REFUSED, {}},
        {HbdEVarType::E_INTEGER, QLocale::English, "9007199254740993", true, 9007199254740993LL},
        {HbdEVarType::E_INTEGER, QLocale::English, "1,000", REFUSED, {}},
        {HbdEVarType::E_INTEGER, QLocale::English, "2.5", REFUSED, {}},
        {HbdEVarType::E_TEXT, QLocale::English, "", true, ""},
        {HbdEVarType::E_TEXT, QLocale::English, "N/A", true, {}},
        {HbdEVarType::E_CATEGORY, QLocale::English, "granite", true, "granite"},
        {HbdEVarType::E_CATEGORY, QLocale::English, "lava", REFUSED, {}},
        {HbdEVarType::E_CATEGORY, QLocale::English, "", true, {}},
        {HbdEVarType::E_COLOR, QLocale::English, "red", true, QColor(Qt::red)},
        {HbdEVarType::E_COLOR, QLocale::English, "reddish", REFUSED, {}},
        {HbdEVarType::E_ALPHA_CHANNEL, QLocale::English, 256, REFUSED, {}},
        {HbdEVarType::E_ALPHA_CHANNEL, QLocale::English, "abc", REFUSED, {}},
        {HbdEVarType::E_ALPHA_CHANNEL, QLocale::English, "8", true, 8},
        {HbdEVarType::E_SELECTION, QLocale::English, false, true, 0},
        {HbdEVarType::E_SELECTION, QLocale::English, 2, REFUSED, {}},
        {HbdEVarType::E_SELECTION, QLocale::English, "abc", REFUSED, {}},
        {HbdEVarType::E_DATE, QLocale::English, "2021-03-01", true, midnight},
        {HbdEVarType::E_DATE, QLocale::English, "2021-03-01T02:00:00+02:00", true, midnight},
        {HbdEVarType::E_DATE, QLocale::English, "01.03.2021", REFUSED, {}},
    };
    for (const auto& c : cases) {
        QLocale::setDefault(QLocale(c.language));
        const QVariant old = cell(c.type, 0);
        EXPECT_EQ(model.setData(model.index(0, c.type), c.typed), c.accepted)
            << qPrintable(c.typed.toString());
        EXPECT_EQ(cell(c.type, 0), c.accepted ? c.stored : old) << qPrintable(c.typed.toString());
    }
}

TEST_F(KudEditedTable, GreysMaskedSamplesAndTellsTheView)
{
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    table.getMask()->select(1, Ku::Select);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(2).value<QVector<int>>(), QVector<int>{Qt::ForegroundRole});
    EXPECT_FALSE(model.index(0, 0).data(Qt::ForegroundRole).isValid());
    EXPECT_TRUE(model.index(1, 0).data(Qt::ForegroundRole).isValid());
}
