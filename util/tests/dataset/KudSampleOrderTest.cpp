#include <util/dataset/KudSampleOrder.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>

#include <QtCore/QDateTime>

#include <numeric>

namespace
{
using Random = std::mt19937_64;
using Ranks = std::vector<int>;

/// Cells of every kind that a type is likely to sort wrongly.
QVariant randomCell(const HbdEVarType& type, Random& random)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    constexpr qint64 LAST = std::numeric_limits<qint64>::max();
    const double reals[] = {INFINITE, -INFINITE, 0.0, -0.0, 5e-324, 1e299, -1e299, 6.000001};
    const qint64 integers[] = {LAST, LAST - 1, -LAST, 0, -1, (qint64(1) << 53) + 1};
    if (random() % 7 == 0)
        return QVariant();
    const bool isSpecial = random() % 3 == 0;
    switch (type.toEnum()) {
    case HbdEVarType::E_REAL:
    case HbdEVarType::E_REAL_32:
        return isSpecial ? reals[random() % 8] : std::normal_distribution<double>()(random);
    case HbdEVarType::E_INTEGER:
        return isSpecial ? integers[random() % 6] : qint64(random() % 1000) - 500;
    case HbdEVarType::E_DATE:
        return QDateTime::fromMSecsSinceEpoch(qint64(random() % 4000000000) - 2000000000, Qt::UTC);
    case HbdEVarType::E_COLOR:
        return QColor(QRgb(random()));
    default:
        return int(random() % 300);
    }
}

/// Some of the ranks, in any order.
Ranks shuffledRanks(int count, Random& random)
{
    Ranks ranks(static_cast<std::size_t>(count));
    std::iota(ranks.begin(), ranks.end(), 0);
    std::shuffle(ranks.begin(), ranks.end(), random);
    ranks.resize(ranks.size() - ranks.size() / 5);
    return ranks;
}

Ranks sorted(Ranks ranks, const HbdAVariable& column, Qt::SortOrder order)
{
    KudSampleOrder::sort(ranks, column, order);
    return ranks;
}

Ranks sortedSlowly(Ranks ranks, const HbdAVariable& column, Qt::SortOrder order)
{
    const auto integer = [](const QVariant& cell) {
        return cell.type() == QVariant::DateTime ? cell.toDateTime().toMSecsSinceEpoch()
               : cell.type() == QVariant::Color  ? qint64(cell.value<QColor>().rgb())
                                                 : cell.toLongLong();
    };
    std::stable_sort(ranks.begin(), ranks.end(), [&](int left, int right) {
        QVariant a = column.getVariant(left);
        QVariant b = column.getVariant(right);
        if (!a.isValid() || !b.isValid())
            return a.isValid() && !b.isValid();
        if (order == Qt::DescendingOrder)
            a.swap(b);
        return a.type() == QVariant::Double ? a.toDouble() < b.toDouble() : integer(a) < integer(b);
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
        for (const int count : {0, 50, 9000}) {
            const auto column = HbdAVariable::create(HbdVariableDetails("v", type));
            column->resize(count);
            for (int rank = 0; rank < count; ++rank)
                column->setVariant(rank, randomCell(type, random));
            const Ranks ranks = shuffledRanks(count, random);
            for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                ASSERT_EQ(sorted(ranks, *column, order), sortedSlowly(ranks, *column, order))
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
    const Ranks ranks = shuffledRanks(30000, random);
    EXPECT_EQ(sorted(ranks, column, Qt::AscendingOrder),
              sortedSlowly(ranks, column, Qt::AscendingOrder));
}

TEST(KudSampleOrder, SortsTextsAndCategoriesAsPeopleDo)
{
    // In this order, whatever the codes; "7" is a code without a category.
    const QStringList inOrder = {"",          "7",    "a",    "A",      "B2",      "b10",
                                 "caf\u00e9", "caff", "x -2", "Zone 9", "zone 10", "\u03b2"};
    HbdVariableText texts(HbdVariableDetails("t", HbdEVarType::TEXT));
    HbdVariableEnum categories(HbdVariableDetails("c", HbdEVarType::CATEGORY));
    HbdVariableInteger places(HbdVariableDetails("n", HbdEVarType::INTEGER));
    HbdEnumCatalog catalog;
    for (int i = 0; i < inOrder.size(); ++i) {
        if (i != 1)
            catalog.addCategory(quint16((i + 5) * 7 % 50), inOrder.at(i));
    }
    ASSERT_FALSE(catalog.containsCode(7));
    categories.setCatalog(catalog);
    Random random(13);
    for (int i = 0; i < 3000; ++i) {
        const auto place = static_cast<int>(random() % 13);
        const bool isUndefined = place == inOrder.size();
        texts.append(isUndefined ? QString() : inOrder.at(place));
        const quint16 code = place == 1 ? 7 : catalog.getCode(texts.at(i));
        categories.append(isUndefined ? HbdEnumCatalog::UNDEFINED_CODE : code);
        places.append(isUndefined ? HbbGlobal::I_FFFF : place);
    }
    for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        const Ranks ranks = shuffledRanks(3000, random);
        EXPECT_EQ(sorted(ranks, texts, order), sorted(ranks, places, order));
        EXPECT_EQ(sorted(ranks, categories, order), sorted(ranks, places, order));
    }
}
