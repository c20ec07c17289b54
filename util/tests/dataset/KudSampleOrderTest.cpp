#include <QtPrinters.h>

#include <util/dataset/KudSampleOrder.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>

#include <QtCore/QDateTime>

#include <numeric>
#include <random>

namespace
{
using Random = std::mt19937_64;

/// Cells of every kind of value that a type is likely to sort wrongly.
QVariant randomCell(const HbdEVarType& type, Random& random)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    constexpr qint64 LAST = std::numeric_limits<qint64>::max();
    const double reals[] = {INFINITE, -INFINITE, 0.0,    -0.0,          5e-324,
                            -1e-300,  1e299,     -1e299, 652000.000001, 652000.000002};
    const qint64 integers[] = {LAST,           LAST - 1, -LAST, 0, -1, (qint64(1) << 53) + 1,
                               qint64(1) << 53};
    const auto pick = random();
    if (pick % 7 == 0)
        return QVariant();
    const bool isSpecial = pick % 3 == 0;
    switch (type.toEnum()) {
    case HbdEVarType::E_REAL:
    case HbdEVarType::E_REAL_32:
        return isSpecial ? reals[random() % 10]
                         : std::normal_distribution<double>(0.0, 100.0)(random);
    case HbdEVarType::E_INTEGER:
        return isSpecial ? integers[random() % 7] : qint64(random() % 1000) - 500;
    case HbdEVarType::E_DATE:
        return QDateTime::fromMSecsSinceEpoch(qint64(random() % 4000000000000U) - 2000000000000,
                                              Qt::UTC);
    default:
        return int(random() % 300);
    }
}

/// Below zero, zero or above, as people see it.
int compared(const QVariant& left, const QVariant& right)
{
    const auto compare = [](auto a, auto b) { return int(a > b) - int(a < b); };
    switch (left.type()) {
    case QVariant::Double:
        return compare(left.toDouble(), right.toDouble());
    case QVariant::DateTime:
        return compare(left.toDateTime(), right.toDateTime());
    case QVariant::Color:
        return compare(left.value<QColor>().rgb(), right.value<QColor>().rgb());
    default:
        return compare(left.toLongLong(), right.toLongLong());
    }
}

/// Some of the ranks, in any order.
std::vector<int> shuffledRanks(int count, Random& random)
{
    std::vector<int> ranks(static_cast<std::size_t>(count));
    std::iota(ranks.begin(), ranks.end(), 0);
    std::shuffle(ranks.begin(), ranks.end(), random);
    ranks.resize(ranks.size() - ranks.size() / 5);
    return ranks;
}

std::vector<int> sortedSlowly(std::vector<int> ranks, const HbdAVariable& column,
                              Qt::SortOrder order)
{
    std::stable_sort(ranks.begin(), ranks.end(), [&](int left, int right) {
        const QVariant a = column.getVariant(left);
        const QVariant b = column.getVariant(right);
        if (!a.isValid() || !b.isValid())
            return a.isValid();
        const int sign = compared(a, b);
        return order == Qt::AscendingOrder ? sign < 0 : sign > 0;
    });
    return ranks;
}
} // namespace

TEST(KudSampleOrder, SortsValuesAsAStableSortOfTheCellsDoes)
{
    Random random(11);
    for (const HbdEVarType& type :
         {HbdEVarType::REAL, HbdEVarType::REAL_32, HbdEVarType::INTEGER, HbdEVarType::COLOR,
          HbdEVarType::ALPHA_CHANNEL, HbdEVarType::SELECTION, HbdEVarType::DATE}) {
        for (const int count : {0, 1, 50, 9000}) {
            const auto column = HbdAVariable::create(HbdVariableDetails("v", type));
            column->resize(count);
            for (int rank = 0; rank < count; ++rank) {
                QVariant cell = randomCell(type, random);
                if (type == HbdEVarType::COLOR && cell.isValid())
                    cell = QColor(QRgb(random()));
                column->setVariant(rank, cell);
            }
            const std::vector<int> ranks = shuffledRanks(count, random);
            for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                std::vector<int> sorted = ranks;
                KudSampleOrder::sort(sorted, *column, order);
                ASSERT_EQ(sorted, sortedSlowly(ranks, *column, order))
                    << qPrintable(type.getKey()) << ' ' << count << ' ' << order;
            }
        }
    }
}

/// Many values that agree in all their leading digits, and some far away.
TEST(KudSampleOrder, SortsRealsThatDifferInTheirLastDigits)
{
    Random random(12);
    HbdVariableReal column(HbdVariableDetails("v"));
    for (int i = 0; i < 30000; ++i)
        column.append(i % 1000 == 0 ? double(random()) : 652000.0 + 1e-9 * double(random() % 5000));
    std::vector<int> ranks(30000);
    std::iota(ranks.begin(), ranks.end(), 0);
    const std::vector<int> expected = sortedSlowly(ranks, column, Qt::AscendingOrder);
    KudSampleOrder::sort(ranks, column);
    EXPECT_EQ(ranks, expected);
}

TEST(KudSampleOrder, SortsTextsAndCategoriesAsPeopleDo)
{
    // In this order, whatever the order of code and of appearance.
    const QStringList expected = {"",          "a",    "A",    "B2",     "b10",     "B10",
                                  "caf\u00e9", "caff", "x -2", "Zone 9", "zone 10", "\u03b2"};
    HbdVariableText texts(HbdVariableDetails("t", HbdEVarType::TEXT));
    HbdVariableEnum categories(HbdVariableDetails("c", HbdEVarType::CATEGORY));
    HbdEnumCatalog catalog;
    QStringList cells = expected;
    Random random(13);
    std::shuffle(cells.begin(), cells.end(), random);
    for (const QString& cell : cells)
        catalog.addCategory(quint16(catalog.getCount() * 3), cell);
    categories.setCatalog(catalog);
    for (int i = 0; i < 3000; ++i) {
        const QString cell = cells.at(int(random() % quint64(cells.size())));
        const bool isUndefined = random() % 9 == 0;
        texts.append(isUndefined ? QString() : cell);
        categories.append(isUndefined ? HbdEnumCatalog::UNDEFINED_CODE : catalog.getCode(cell));
    }
    for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        std::vector<int> ranks = shuffledRanks(3000, random);
        std::vector<int> byLabel = ranks;
        std::vector<int> slowly = ranks;
        std::stable_sort(slowly.begin(), slowly.end(), [&](int left, int right) {
            const QString a = texts.at(left);
            const QString b = texts.at(right);
            if (a.isNull() || b.isNull())
                return !a.isNull() && b.isNull();
            const bool isAscending = order == Qt::AscendingOrder;
            return isAscending ? expected.indexOf(a) < expected.indexOf(b)
                               : expected.indexOf(a) > expected.indexOf(b);
        });
        KudSampleOrder::sort(ranks, texts, order);
        KudSampleOrder::sort(byLabel, categories, order);
        EXPECT_EQ(ranks, slowly);
        EXPECT_EQ(byLabel, slowly);
    }
}

TEST(KudSampleOrder, SortsCodesWithoutACategoryByTheirNumber)
{
    HbdVariableEnum column(HbdVariableDetails("c", HbdEVarType::CATEGORY));
    HbdEnumCatalog catalog;
    catalog.addCategory(7, "5");
    catalog.addCategory(1, "b");
    column.setCatalog(catalog);
    for (const int code : {1, 0xFFFF, 10, 7, 9})
        column.append(quint16(code));
    std::vector<int> ranks = {0, 1, 2, 3, 4};
    KudSampleOrder::sort(ranks, column);
    EXPECT_EQ(ranks, (std::vector<int>{3, 4, 2, 0, 1}));
}
