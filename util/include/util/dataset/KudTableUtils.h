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

/// One cell for a Qt role. Qt::DisplayRole: the formatted text in the variable's display unit,
/// STR_NA when it is undefined. Qt::EditRole: what a person edits, in display unit; reals as texts
/// of all their digits and dates in ISO 8601, invalid when it is undefined. Qt::DecorationRole: the
/// category's or the cell's colour. Invalid for other roles.
KELVANE_UTIL_EXPORT QVariant valueToRole(int role, const HbdAVariable& variable, int rank);

/// What a column of these details stores for an edited value: invalid for a value that clears the
/// cell (see isClearing), and for one that the column cannot hold. Numbers come in the display
/// unit; the decimal sign of a text is a dot or that of the user's locale, and signs that group
/// digits are none of a number. Dates are texts in ISO 8601, UTC without a zone; opacities run from
/// 0 to 255, selections are 0 or 1. The label of a category is passed on, whether it exists or not.
KELVANE_UTIL_EXPORT QVariant editRoleToValue(const HbdVariableDetails& details,
                                             const QVariant& value);

/// Whether the edited value asks for an undefined cell: invalid, a blank text, or STR_NA.
KELVANE_UTIL_EXPORT bool isClearing(const QVariant& value);

/// The rows in which anything is selected; empty for null.
KELVANE_UTIL_EXPORT HbiIntervalIntSmallDisjoint
getSelectedRows(const QItemSelectionModel* selectionModel);
} // namespace KudTableUtils
