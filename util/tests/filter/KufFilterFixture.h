#pragma once

#include "ErrorText.h"

#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/filter/KufSampleFilter.h>
#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>

#include <basic/data/HbdDataTable.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include <limits>

// What the tests of filters share: a dataset with a column of each kind and every odd value, and
// random rules on them.

using Numeric = KufSampleFilterRuleNumeric;
using Operator = KufSampleFilterRuleNumeric::CompareOperator;
using Bound = KufSampleFilterRuleNumeric::IntervalOperator;
using Alpha = KufSampleFilterRuleAlpha;
using Categories = KufSampleFilterRuleEnum;
using Selection = KufSampleFilterRuleSelection;

inline KudDatasetVariable onPoints(const QString& name)
{
    return KudDatasetVariable::createVariable("Points", name);
}

struct RandomFilters {
    explicit RandomFilters(unsigned seed)
        : engine(seed)
    {
    }

    int below(int end) { return static_cast<int>(engine() % static_cast<unsigned>(end)); }

    template <class T>
    T oneOf(std::initializer_list<T> values)
    {
        return values.begin()[below(static_cast<int>(values.size()))];
    }

    /// Mostly those that the columns hold.
    double number()
    {
        constexpr double INF = std::numeric_limits<double>::infinity();
        return oneOf<double>({-INF, -1e10, -2.5, -1.0, -0.0, 0.0, 5e-324, 0.1, 0.5, 1.0, 1.5, 2.0,
                              3.0, 254.0, 255.0, 256.0, 9007199254740993.0, 1e19, INF});
    }

    QString text()
    {
        return oneOf<QString>({"", "a", "ab", "Bore 1", "O'Hara", "\\", "%1", "x%99y", "line\nend",
                               "Zürich", "𝄞", QString(QChar(0))});
    }

    Numeric numeric()
    {
        const auto bound = [this] { return Bound::fromValue(below(2)); };
        switch (below(4)) {
        case 0:
            return Numeric();
        case 1:
            return Numeric(number(), bound(), number(), bound());
        default:
            return Numeric(Operator::fromValue(below(6)), number(), oneOf({0.0, 0.5, 1.0, -1.0}));
        }
    }

    Alpha alpha() { return Alpha(Alpha::Mode::fromValue(below(3)), text()); }

    Categories categories()
    {
        QStringList names;
        for (const char* name : {"Ag", "Ah", "W", "a b", "-1"}) {
            if (below(3) == 0)
                names << name;
        }
        return Categories(names);
    }

    /// A rule on any column.
    void addRule(KufSampleFilter& filter)
    {
        switch (below(6)) {
        case 0:
            return filter.addRule(onPoints("name"), alpha());
        case 1:
            return filter.addRule(onPoints("land use"), categories());
        case 2:
            return filter.addRule(onPoints("selected"), Selection(below(2) == 0));
        case 3:
            return filter.addRule(
                onPoints(oneOf<QString>({"name", "land use", "tint", "selected"})), Numeric());
        default:
            return filter.addRule(onPoints(oneOf<QString>(
                                      {"zinc", "Pb[1].x", "count", "day", "opacity", "selected"})),
                                  numeric());
        }
    }

    QString combination(int ruleCount, int depth = 4)
    {
        const QString rule = "R" + QString::number(1 + below(ruleCount));
        if (depth == 0 || below(4) == 0)
            return rule;
        const QString left = combination(ruleCount, depth - 1);
        switch (below(4)) {
        case 0:
            return "not " + left;
        case 1:
            return "(" + left + ")";
        default:
            return left + oneOf<QString>({" and ", " OR ", "\tor\n"}) +
                   combination(ruleCount, depth - 1);
        }
    }

    std::mt19937 engine;
};

class KufFilterData : public testing::Test
{
protected:
    static constexpr int COUNT = 1000;

    KufFilterData()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const struct {
            const char* name;
            HbdEVarType type;
        } columns[] = {
            {"zinc", HbdEVarType::REAL},
            {"Pb[1].x", HbdEVarType::REAL_32},
            {"count", HbdEVarType::INTEGER},
            {"day", HbdEVarType::DATE},
            {"opacity", HbdEVarType::ALPHA_CHANNEL},
            {"selected", HbdEVarType::SELECTION},
            {"name", HbdEVarType::TEXT},
            {"land use", HbdEVarType::CATEGORY},
            {"tint", HbdEVarType::COLOR},
        };
        HbdDataTable table;
        for (const auto& column : columns) {
            auto variable = HbdAVariable::create(HbdVariableDetails(column.name, column.type));
            variable->resize(COUNT);
            for (int i = 0; i < COUNT; ++i) {
                if (random.below(8) > 0)
                    variable->setVariant(i, cell(column.type));
            }
            table.addVariable(std::move(variable));
        }
        // What came from elsewhere may hold NaN.
        auto* zinc = dynamic_cast<HbdVariableReal*>(table.findVariable("zinc"));
        zinc->set(0, nan);
        auto* landUse = dynamic_cast<HbdVariableEnum*>(table.findVariable("land use"));
        HbdEnumCatalog catalog;
        const QStringList labels = {"Ag", "W", "Ah", "a b", "-1"};
        for (int code = 0; code < labels.size(); ++code)
            catalog.addCategory(static_cast<quint16>(code * code), labels.at(code));
        landUse->setCatalog(catalog);
        for (int i = 0; i < COUNT; ++i) // 2, 3, 5 and more have no category
            landUse->set(i, random.below(20) == 0 ? HbdEnumCatalog::UNDEFINED_CODE
                                                  : static_cast<quint16>(random.below(18)));
        points.setDataTable(std::move(table));
    }

    QVariant cell(const HbdEVarType& type)
    {
        switch (type.toEnum()) {
        case HbdEVarType::E_TEXT:
            return random.text() + random.text();
        case HbdEVarType::E_SELECTION:
            return random.below(2);
        case HbdEVarType::E_ALPHA_CHANNEL:
            return random.oneOf({0, 1, 2, 254, 255});
        case HbdEVarType::E_COLOR:
            return "#102030";
        case HbdEVarType::E_CATEGORY:
            return 0;
        case HbdEVarType::E_REAL:
        case HbdEVarType::E_REAL_32:
            return random.number();
        default:
            return random.oneOf<qint64>({-3, -1, 0, 1, 2, 3, 255, 9007199254740993,
                                         std::numeric_limits<qint64>::max(),
                                         std::numeric_limits<qint64>::min() + 1});
        }
    }

    KufSampleFilter randomFilter()
    {
        KufSampleFilter filter("random");
        const int count = 1 + random.below(4);
        for (int i = 0; i < count; ++i)
            random.addRule(filter);
        filter.setCombination(random.combination(count));
        return filter;
    }

    RandomFilters random{20};
    KudMemoryDatasetPoint points{"survey"};
};
