// Filters from any bytes: a combination's normal form is valid and its own normal form, a rule's
// printed text reads back as the same rule, a stored filter that is read is written the same, and
// whatever is accepted is evaluated, its Python form included.
#include "FuzzTarget.h"

#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/filter/KufISampleFilterRule.h>
#include <util/filter/KufSampleFilter.h>
#include <util/filter/KufSampleFilterCombinationValidator.h>
#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleText.h>
#include <util/filter/KufSampleFilterValidator.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/error/HbeUserError.h>

#include <optional>

namespace
{
const KudMemoryDatasetPoint& survey()
{
    static KudMemoryDatasetPoint points(QStringLiteral("survey"));
    if (points.getPointTable()->hasVariable())
        return points;
    HbdDataTable table;
    for (const HbdEVarType& type : HbdEVarType::createIterator()) {
        auto column = HbdAVariable::create(HbdVariableDetails(type.getKey().toLower(), type));
        column->resize(70);
        if (auto* categories = dynamic_cast<HbdVariableEnum*>(column.get())) {
            HbdEnumCatalog catalog;
            catalog.findOrAdd(QStringLiteral("Ag"));
            catalog.findOrAdd(QStringLiteral("a b"));
            categories->setCatalog(catalog);
        }
        for (int i = 0; i < 60; ++i)
            column->setVariant(i, type == HbdEVarType::TEXT ? QVariant(QString::number(i))
                                                            : QVariant(i % 2));
        table.addVariable(std::move(column));
    }
    points.setDataTable(std::move(table));
    return points;
}

/// Valid filters are evaluated, all others refused.
void evaluate(const KufSampleFilter& filter)
{
    const QList<KudDatasetVariable> variables = filter.getVariables();
    const bool isValid = KufSampleFilterValidator(&filter, &survey(), variables).isValid();
    try {
        const KufSampleFilterQBitArrayVisitor bits(&filter, &survey(), variables);
        const KufSampleFilterPythonVisitor python(&filter, &survey(), variables, QString());
        require(isValid && bits.getSelection().size() == 70);
        require(python.getPythonString().isEmpty() == (filter.getRuleCount() == 0));
    } catch (const HbeUserError&) {
        require(!isValid);
    }
}

void tryCombination(const QString& text)
{
    KufSampleFilter filter;
    for (int i = 0; i < 12; ++i)
        filter.addRule(survey().getPointTable()->getVariableAt(i % 2),
                       KufSampleFilterRuleNumeric());
    filter.setCombination(text);
    const KufSampleFilterCombinationValidator first(&filter);
    evaluate(filter);
    if (!first.isValid()) {
        require(first.getErrorPosition() >= 0 && first.getErrorPosition() <= text.size());
        return;
    }
    filter.setCombination(first._checkCombination());
    const KufSampleFilterCombinationValidator second(&filter);
    require(second.isValid() && second._checkCombination() == first._checkCombination());
}

std::optional<KufSampleFilterRuleText::Rule> parse(const QString& text)
{
    try {
        return KufSampleFilterRuleText(*survey().getPointTable()).parse(text);
    } catch (const HbeUserError&) {
        return std::nullopt;
    }
}

void tryRule(const QString& text)
{
    const auto rule = parse(text);
    if (!rule)
        return;
    const QString printed =
        KufSampleFilterRuleText(*survey().getPointTable()).print(rule->variable, *rule->rule);
    const auto again = parse(printed);
    require(again && again->variable == rule->variable && again->rule->isEqual(*rule->rule));
    KufSampleFilter filter;
    filter.addRule(rule->variable, *rule->rule);
    evaluate(filter);
}

void tryStored(const QByteArray& bytes)
{
    KufSampleFilter filter;
    try {
        filter.setMemento(KuxXmlMementoFile::bytesToMemento(bytes, QStringLiteral("fuzz")), true);
    } catch (const HbeError&) {
        require(filter.getRuleCount() == 0);
        return;
    }
    evaluate(filter);
    KufSampleFilter again;
    again.fromQVariantMap(filter.toQVariantMap());
    require(again.isEqual(filter));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));
    switch (data[0]) {
    case 'c':
        tryCombination(QString::fromUtf8(bytes));
        break;
    case 'r':
        tryRule(QString::fromUtf8(bytes));
        break;
    default:
        tryStored(bytes);
    }
    return 0;
}
