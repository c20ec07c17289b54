#include "KudTablePasteValues.h"

#include <util/dataset/KudTableUtils.h>

#include "KudTableBlockColumn.h"
#include "KudTableUtilsNumbers.h"

#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdValueTraits.h>
#include <basic/data/HbdVarTypeFlags.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/unit/HbuUnitService.h>

#include <array>

namespace
{
using namespace KudTableUtilsNumbers;

constexpr int ROW_BLOCK = 256;

bool isNumber(const HbdAVariable& column)
{
    return HbdVarTypeFlags::NUMERIC.contains(column.getType());
}

bool hasUnit(const HbdVariableDetails& details)
{
    return details.unit.isValid() && !details.unit.isNone();
}

/// Between the units that two columns store their values in; where one has none, the number stays
/// what people see. Invalid when there is no way.
HbuUnitTransfo conversionOf(const HbdVariableDetails& from, const HbdVariableDetails& to)
{
    const HbuUnitService& units = HbuUnitService::getInstance();
    if (hasUnit(from) && hasUnit(to))
        return units.getConversion(from.unit, to.unit);
    return shownTransfo(from).followedBy(shownTransfo(to).inverted());
}

bool isIntegerWithin(const QVariant& value, qint64 last)
{
    const qint64 number = HbdValueTraits::Integer::fromVariant(value);
    return number >= 0 && number <= last;
}
} // namespace

KudTablePaste::Values::Values(const KudTableBlock& block, int source, const HbdAVariable& target)
    : m_rowCount(block.getRowCount())
    , m_values(block.getValues(source))
{
    if (m_values == nullptr)
        takeTexts(block, source, target);
    else if (isNumber(*m_values) && isNumber(target))
        takeNumbers(*m_values, target);
    else if (m_values->getType() != target.getType())
        takeRendered(*m_values, target);
    else if (target.getType() == HbdEVarType::CATEGORY)
        takeCategories(*m_values, target);
}

void KudTablePaste::Values::startFrom(const HbdAVariable& target)
{
    m_own = target.createEmpty();
    m_own->resize(m_rowCount);
    m_values = m_own.get();
}

void KudTablePaste::Values::takeNumbers(const HbdAVariable& source, const HbdAVariable& target)
{
    const HbuUnitTransfo conversion = conversionOf(source.getDetails(), target.getDetails());
    if (conversion.isIdentity() && source.getType() == target.getType())
        return;
    startFrom(target);
    if (!conversion.isValid()) {
        m_problems.assign(static_cast<std::size_t>(m_rowCount), OTHER_UNIT);
        return;
    }
    const bool isInteger = target.getType() == HbdEVarType::INTEGER;
    std::array<double, ROW_BLOCK> numbers;
    for (int row = 0; row < m_rowCount; row += ROW_BLOCK) {
        const int count = std::min(ROW_BLOCK, m_rowCount - row);
        static_cast<const HbdANumericVariable&>(source).readNumbers(row, count, numbers.data());
        conversion.apply(numbers.data(), count);
        if (isInteger && !conversion.isIdentity()) {
            for (int i = 0; i < count; ++i)
                static_cast<HbdVariableInteger&>(*m_own).set(
                    row + i, nearestInteger(numbers[std::size_t(i)]));
        } else {
            static_cast<HbdANumericVariable&>(*m_own).writeNumbers(row, count, numbers.data());
        }
    }
    for (int row = 0; row < m_rowCount; ++row) {
        if (m_own->isUndefined(row) && !source.isUndefined(row))
            setProblem(row, isInteger ? NOT_AN_INTEGER : TOO_LARGE);
    }
}

void KudTablePaste::Values::takeCategories(const HbdAVariable& source, const HbdAVariable& target)
{
    const auto& theirs = static_cast<const HbdVariableEnum&>(source);
    const HbdEnumCatalog catalog = static_cast<const HbdVariableEnum&>(target).getCatalog();
    constexpr int UNKNOWN = -1;
    std::vector<int> codes(HbdEnumCatalog::UNDEFINED_CODE + 1);
    for (int code = 0; code < HbdEnumCatalog::UNDEFINED_CODE; ++code) {
        // A code that stands for nothing on either side is kept; it must not come to mean
        // something.
        const bool isKnown = catalog.containsCode(static_cast<quint16>(code));
        codes[static_cast<std::size_t>(code)] = isKnown ? UNKNOWN : code;
    }
    codes.back() = HbdEnumCatalog::UNDEFINED_CODE;
    for (const HbdEnumCatalog::Category& category : theirs.getCatalog().getCategories()) {
        codes[category.code] =
            catalog.containsLabel(category.label) ? catalog.getCode(category.label) : UNKNOWN;
    }

    startFrom(target);
    auto& own = static_cast<HbdVariableEnum&>(*m_own);
    for (int row = 0; row < m_rowCount; ++row) {
        const int code = codes[theirs.at(row)];
        if (code == UNKNOWN)
            setProblem(row, NOT_A_CATEGORY);
        else
            own.set(row, static_cast<quint16>(code));
    }
}

void KudTablePaste::Values::takeRendered(const HbdAVariable& source, const HbdAVariable& target)
{
    startFrom(target);
    const auto cells = KudTableBlockColumn::create(source, QLatin1Char('.'));
    std::array<int, ROW_BLOCK> rows;
    std::array<QVariant, ROW_BLOCK> texts;
    for (int row = 0; row < m_rowCount; row += ROW_BLOCK) {
        const int count = std::min(ROW_BLOCK, m_rowCount - row);
        for (int i = 0; i < count; ++i)
            rows[std::size_t(i)] = row + i;
        cells->render(rows.data(), count);
        for (int i = 0; i < count; ++i) {
            const std::string_view text = cells->getTexts().at(i);
            texts[std::size_t(i)] =
                source.isUndefined(row + i)
                    ? QVariant()
                    : QVariant(QString::fromUtf8(text.data(), static_cast<int>(text.size())));
        }
        storeTexts(row, texts.data(), count);
    }
}

void KudTablePaste::Values::takeTexts(const KudTableBlock& block, int source,
                                      const HbdAVariable& target)
{
    startFrom(target);
    std::array<QVariant, ROW_BLOCK> texts;
    for (int row = 0; row < m_rowCount; row += ROW_BLOCK) {
        const int count = std::min(ROW_BLOCK, m_rowCount - row);
        for (int i = 0; i < count; ++i)
            texts[std::size_t(i)] = block.getCell(row + i, source);
        storeTexts(row, texts.data(), count);
    }
}

/// Stores texts as if they had been typed.
void KudTablePaste::Values::storeTexts(int firstRow, const QVariant* texts, int count)
{
    std::array<QVariant, ROW_BLOCK> stored;
    std::array<const QVariant*, ROW_BLOCK> cells;
    for (int i = 0; i < count; ++i) {
        stored[std::size_t(i)] = KudTableUtils::editRoleToValue(m_own->getDetails(), texts[i]);
        cells[std::size_t(i)] = &stored[std::size_t(i)];
    }
    m_own->setVariants(firstRow, cells.data(), count);
    for (int i = 0; i < count; ++i) {
        const Problem problem = problemOf(stored[std::size_t(i)], m_own->isUndefined(firstRow + i));
        if (problem != NONE && !KudTableUtils::isClearing(texts[i]))
            setProblem(firstRow + i, problem);
    }
}

/// Of an edited value, and of what became of it in the column.
KudTablePaste::Values::Problem KudTablePaste::Values::problemOf(const QVariant& edited,
                                                                bool isUndefined) const
{
    switch (m_own->getType().toEnum()) {
    case HbdEVarType::E_TEXT:
        return NONE;
    case HbdEVarType::E_CATEGORY: {
        const HbdEnumCatalog& catalog = static_cast<const HbdVariableEnum&>(*m_own).getCatalog();
        return catalog.containsLabel(edited.toString()) ? NONE : NOT_A_CATEGORY;
    }
    case HbdEVarType::E_SELECTION:
        return isIntegerWithin(edited, 1) ? NONE : NOT_A_SELECTION;
    case HbdEVarType::E_ALPHA_CHANNEL:
        return isIntegerWithin(edited, 255) ? NONE : NOT_AN_OPACITY;
    case HbdEVarType::E_DATE:
        return isUndefined ? NOT_A_DATE : NONE;
    case HbdEVarType::E_COLOR:
        return isUndefined ? NOT_A_COLOUR : NONE;
    case HbdEVarType::E_INTEGER:
        return isUndefined ? NOT_AN_INTEGER : NONE;
    case HbdEVarType::E_REAL_32:
        return isUndefined ? NOT_OF_SINGLE_PRECISION : NONE;
    default:
        return isUndefined ? NOT_A_NUMBER : NONE;
    }
}

void KudTablePaste::Values::setProblem(int row, Problem problem)
{
    if (m_problems.empty())
        m_problems.resize(static_cast<std::size_t>(m_rowCount), NONE);
    m_problems[static_cast<std::size_t>(row)] = problem;
}

QString KudTablePaste::Values::getProblem(int row) const
{
    switch (m_problems.empty() ? NONE : m_problems[static_cast<std::size_t>(row)]) {
    case NOT_A_NUMBER:
        return tr("It is not a number.");
    case NOT_OF_SINGLE_PRECISION:
        return tr("It is not a number of single precision.");
    case NOT_AN_INTEGER:
        return tr("It is not a whole number.");
    case NOT_A_CATEGORY:
        return tr("It is not one of the categories.");
    case NOT_A_DATE:
        return tr("It is not a date.");
    case NOT_A_COLOUR:
        return tr("It is not a colour.");
    case NOT_A_SELECTION:
        return tr("It is neither 0 nor 1.");
    case NOT_AN_OPACITY:
        return tr("It is not a whole number from 0 to 255.");
    case TOO_LARGE:
        return tr("It is too large.");
    case OTHER_UNIT:
        return tr("Its unit does not convert into that of the variable.");
    case NONE:
        break;
    }
    return QString();
}

std::unique_ptr<HbdAVariable> KudTablePaste::Values::makePiece(const HbdAVariable& current,
                                                               const HbiIntervalIntSmall& range,
                                                               const Place* first,
                                                               const Place* last) const
{
    const int begin = range.getMin();
    const int count = static_cast<int>(range.getLength());
    std::unique_ptr<HbdAVariable> piece = current.createEmpty();
    piece->resize(count);
    piece->copyValues(0, current, begin, count);
    while (first != last) {
        // As many as lie side by side here and there.
        const Place* next = first + 1;
        while (next != last && next->rank == next[-1].rank + 1 && next->row == next[-1].row + 1)
            ++next;
        piece->copyValues(first->rank - begin, *m_values, first->row,
                          static_cast<int>(next - first));
        first = next;
    }
    return piece;
}
