#pragma once

#include <util/KuExport.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QVariant>

class HbdAVariable;
class QItemSelectionModel;
struct HbdVariableDetails;

/// Conversions between the cells of a table and what views show and edit.
namespace KudTableUtils
{
/// The clipboard type of our own blocks of cells.
constexpr char KELVANE_MIME_DATA[] = "application/x-kelvane";

/// One cell for a Qt role: the formatted text in the variable's display unit (STR_NA when it is
/// undefined) for Qt::DisplayRole, the value in display unit for Qt::EditRole, the category's or
/// the cell's colour for Qt::DecorationRole. Invalid for other roles.
KELVANE_UTIL_EXPORT QVariant valueToRole(int role, const HbdAVariable& variable, int rank);

/// What a column of these details stores for an edited value: numbers come in the display unit,
/// texts with the decimal sign of the C locale or of the user's. Invalid for a value that clears
/// the cell, and for a text that is no number where one is needed.
KELVANE_UTIL_EXPORT QVariant editRoleToValue(const HbdVariableDetails& details,
                                             const QVariant& value);

/// Whether the edited value asks for an undefined cell: invalid, a blank text, or STR_NA.
KELVANE_UTIL_EXPORT bool isClearing(const QVariant& value);

/// The rows in which anything is selected; empty for null.
KELVANE_UTIL_EXPORT HbiIntervalIntSmallDisjoint
getSelectedRows(const QItemSelectionModel* selectionModel);
} // namespace KudTableUtils
