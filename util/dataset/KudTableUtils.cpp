#include <util/dataset/KudTableUtils.h>

#include "KudSelectionModel.h"
#include "KudTableUtilsNumbers.h"

#include <basic/base/HbbStringFormat.h>
#include <basic/data/HbdValueTraits.h>
#include <basic/data/HbdVarTypeFlags.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QDateTime>
#include <QtCore/QItemSelectionModel>
#include <QtCore/QLocale>

#include <array>
#include <charconv>
#include <cmath>

HbuUnitTransfo KudTableUtilsNumbers::shownTransfo(const HbdVariableDetails& details)
{
    if (!details.displayUnit.isValid() || !HbdVarTypeFlags::NUMERIC.contains(details.type))
        return HbuUnitTransfo();
    const HbuUnitTransfo transfo =
        HbuUnitService::getInstance().getConversion(details.unit, details.displayUnit);
    return transfo.isValid() ? transfo : HbuUnitTransfo();
}

qint64 KudTableUtilsNumbers::nearestInteger(double number)
{
    const double nearest = std::round(number);
    const bool isNear = std::fabs(number - nearest) <= 1e-9 * std::max(1.0, std::fabs(number));
    return isNear ? HbdValueTraits::Integer::fromNumber(nearest) : HbbGlobal::I_FFFF;
}

namespace
{
using namespace KudTableUtilsNumbers;

/// The value in the unit shown, in which an integer is a real.
QVariant shownValue(const HbdAVariable& variable, int rank)
{
    const QVariant value = variable.getVariant(rank);
    if (!value.isValid())
        return value;
    const HbuUnitTransfo transfo = shownTransfo(variable.getDetails());
    return transfo.isIdentity() ? value : QVariant(transfo.apply(value.toDouble()));
}

QString displayText(const HbdAVariable& variable, int rank)
{
    const QVariant value = shownValue(variable, rank);
    if (!value.isValid())
        return HbbGlobal::STR_NA;
    const HbdVariableDetails& details = variable.getDetails();
    if (value.type() == QVariant::Double) {
        return QString::fromLatin1(HbbStringFormat::simpleValueToByteArray(
            value.toDouble(), details.format, details.precision));
    }
    if (variable.getType() == HbdEVarType::DATE)
        return value.toDateTime().toString(Qt::ISODateWithMs);
    if (variable.getType() == HbdEVarType::COLOR)
        return value.value<QColor>().name();
    return value.toString();
}

/// All digits, without an exponent as long as people can read it.
QString editedText(double number)
{
    const double size = std::fabs(number);
    if (size != 0 && (size < 1e-5 || !(size < 1e15))) {
        return QString::fromLatin1(
            HbbStringFormat::simpleValueToByteArray(number, HbbEFormat::SHORTEST, 0));
    }
    std::array<char, 64> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                   std::chars_format::fixed);
    return QString::fromLatin1(buffer.data(), static_cast<int>(end.ptr - buffer.data()));
}

/// Numbers and dates as texts: Qt's own editors round the ones to two decimals and take the others
/// for local time.
QVariant editedValue(const HbdAVariable& variable, int rank)
{
    const QVariant value = shownValue(variable, rank);
    if (value.type() == QVariant::Double)
        return editedText(value.toDouble());
    if (value.type() == QVariant::DateTime)
        return displayText(variable, rank);
    return value;
}

QVariant decoration(const HbdAVariable& variable, int rank)
{
    if (variable.getType() == HbdEVarType::COLOR)
        return variable.getVariant(rank);
    if (variable.getType() == HbdEVarType::CATEGORY) {
        const auto& categories = static_cast<const HbdVariableEnum&>(variable);
        return categories.getCatalog().getColor(categories.at(rank));
    }
    return QVariant();
}

/// A number as people type it: the decimal sign is the dot, or that of their locale. Nothing stands
/// for a group of digits, for "1,234" would be one number here and another there.
double typedNumber(const QString& text)
{
    const double number = HbbGlobal::convertString(text, HbbGlobal::D_FFFF);
    if (!HbbGlobal::isUndefined(number))
        return number;
    QLocale locale;
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    bool ok = false;
    const double local = locale.toDouble(text, &ok);
    return ok ? HbbGlobal::normalized(local) : HbbGlobal::D_FFFF;
}

QVariant storedNumber(const HbdVariableDetails& details, const QVariant& value)
{
    using namespace HbdValueTraits;
    const HbuUnitTransfo transfo = shownTransfo(details).inverted();
    const bool isText = value.type() == QVariant::String;
    if (details.type == HbdEVarType::INTEGER && transfo.isIdentity()) {
        return Integer::toVariant(Integer::fromVariant(value));
    }
    const double number =
        transfo.apply(isText ? typedNumber(value.toString()) : Real::fromVariant(value));
    if (details.type == HbdEVarType::INTEGER)
        return Integer::toVariant(nearestInteger(number));
    const bool fits = details.type == HbdEVarType::REAL || !std::isnan(Real32::fromNumber(number));
    return fits ? Real::toVariant(number) : QVariant();
}

QVariant storedSmallInteger(const QVariant& value, qint64 last)
{
    const qint64 number = value.type() == QVariant::Bool
                              ? value.toLongLong()
                              : HbdValueTraits::Integer::fromVariant(value);
    return number >= 0 && number <= last ? QVariant(static_cast<int>(number)) : QVariant();
}
} // namespace

QVariant KudTableUtils::valueToRole(int role, const HbdAVariable& variable, int rank)
{
    switch (role) {
    case Qt::DisplayRole:
        return displayText(variable, rank);
    case Qt::EditRole:
        return editedValue(variable, rank);
    case Qt::DecorationRole:
        return decoration(variable, rank);
    default:
        return QVariant();
    }
}

bool KudTableUtils::isClearing(const QVariant& value)
{
    const QString text = value.toString().trimmed();
    return !value.isValid() ||
           (value.type() == QVariant::String && (text.isEmpty() || text == HbbGlobal::STR_NA));
}

QVariant KudTableUtils::editRoleToValue(const HbdVariableDetails& details, const QVariant& value)
{
    using namespace HbdValueTraits;
    const bool isText = value.type() == QVariant::String;
    if (details.type == HbdEVarType::TEXT)
        return isText && value.toString() == HbbGlobal::STR_NA ? QVariant() : value;
    if (isClearing(value))
        return QVariant();
    const QVariant given = isText ? QVariant(value.toString().trimmed()) : value;
    switch (details.type.toEnum()) {
    case HbdEVarType::E_DATE:
        return Date::toVariant(Date::fromVariant(given));
    case HbdEVarType::E_COLOR:
        return Color::toVariant(Color::fromVariant(given));
    case HbdEVarType::E_ALPHA_CHANNEL:
        return storedSmallInteger(given, 255);
    case HbdEVarType::E_SELECTION:
        return storedSmallInteger(given, 1);
    case HbdEVarType::E_REAL:
    case HbdEVarType::E_REAL_32:
    case HbdEVarType::E_INTEGER:
        return storedNumber(details, given);
    default:
        return value;
    }
}

HbiIntervalIntSmallDisjoint
KudTableUtils::getSelectedRows(const QItemSelectionModel* selectionModel)
{
    HbiIntervalIntSmallDisjoint rows;
    if (const auto* ours = qobject_cast<const KudSelectionModel*>(selectionModel))
        return ours->getSelectedRows();
    if (selectionModel != nullptr) {
        for (const QItemSelectionRange& range : selectionModel->selection())
            rows.add(HbiIntervalIntSmall(range.top(), range.bottom()));
    }
    return rows;
}
