#include <util/dataset/KudTableUtils.h>

#include "KudSelectionModel.h"

#include <basic/base/HbbStringFormat.h>
#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdValueTraits.h>
#include <basic/data/HbdVarTypeFlags.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QDateTime>
#include <QtCore/QItemSelectionModel>
#include <QtCore/QLocale>

namespace
{
/// From the storage unit to the one shown.
HbuUnitTransfo shownTransfo(const HbdVariableDetails& details)
{
    return HbuUnitService::getInstance().getConversion(details.unit, details.getShownUnit());
}

bool isReal(const HbdAVariable& variable)
{
    return variable.getType() == HbdEVarType::REAL || variable.getType() == HbdEVarType::REAL_32;
}

QVariant shownValue(const HbdAVariable& variable, int rank)
{
    const QVariant value = variable.getVariant(rank);
    if (!value.isValid() || !isReal(variable))
        return value;
    const HbuUnitTransfo transfo = shownTransfo(variable.getDetails());
    return transfo.isValid() ? QVariant(transfo.apply(value.toDouble())) : value;
}

QString displayText(const HbdAVariable& variable, int rank)
{
    const QVariant value = shownValue(variable, rank);
    if (!value.isValid())
        return HbbGlobal::STR_NA;
    const HbdVariableDetails& details = variable.getDetails();
    if (isReal(variable)) {
        return QString::fromLatin1(HbbStringFormat::simpleValueToByteArray(
            value.toDouble(), details.format, details.precision));
    }
    if (variable.getType() == HbdEVarType::DATE)
        return value.toDateTime().toString(Qt::ISODateWithMs);
    if (variable.getType() == HbdEVarType::COLOR)
        return value.value<QColor>().name();
    return value.toString();
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

/// A number as people type it: the sign of the C locale first, then that of their own.
QVariant typedNumber(const QString& text)
{
    const double number = HbbGlobal::convertString(text, HbbGlobal::D_FFFF);
    if (!HbbGlobal::isUndefined(number))
        return number;
    bool ok = false;
    const double local = QLocale().toDouble(text, &ok);
    return ok ? QVariant(local) : QVariant();
}
} // namespace

QVariant KudTableUtils::valueToRole(int role, const HbdAVariable& variable, int rank)
{
    switch (role) {
    case Qt::DisplayRole:
        return displayText(variable, rank);
    case Qt::EditRole:
        return shownValue(variable, rank);
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
    const bool isText = value.type() == QVariant::String;
    if (details.type == HbdEVarType::TEXT)
        return isText && value.toString() == HbbGlobal::STR_NA ? QVariant() : value;
    if (isClearing(value))
        return QVariant();
    if (!HbdVarTypeFlags::NUMERIC.contains(details.type))
        return value;
    const QString text = value.toString().trimmed();
    if (details.type == HbdEVarType::INTEGER) {
        const qint64 number = HbdValueTraits::Integer::fromVariant(isText ? QVariant(text) : value);
        return HbdValueTraits::Integer::toVariant(number);
    }

    const QVariant number = isText ? typedNumber(text) : value;
    const HbuUnitTransfo transfo = shownTransfo(details).inverted();
    return number.isValid() && transfo.isValid() ? QVariant(transfo.apply(number.toDouble()))
                                                 : number;
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
