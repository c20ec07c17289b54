#pragma once

#include <util/KuExport.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QVariant>
#include <QtCore/QVector>

class HbdAVariable;
class QAbstractItemModel;
class QItemSelectionModel;
class QMimeData;
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

/// \name The clipboard; docs/formats/clipboard.md has the forms
/// @{

/// A block of cells as plain text, as HTML and in our own form, which keeps every value exactly;
/// owned by the caller. Rows and columns are those of the model; what it does not have is left out.
/// In the texts a number comes in the unit shown, with all its digits and `decimal` for its sign,
/// and an undefined cell is empty. The cells of a model that rests on a table, through whatever
/// proxies, are the table's. HbeUserError for a block of more than 512 MB.
KELVANE_UTIL_EXPORT QMimeData* encodeForClipboard(const QAbstractItemModel* model,
                                                  const HbiIntervalIntSmallDisjoint& rows,
                                                  const HbiIntervalIntSmallDisjoint& columns,
                                                  QChar decimal = QLatin1Char('.'));

/// The same of what is selected within these rows and columns. Rows and columns without a selected
/// cell are left out; a cell between others that is not selected is empty in the texts, and in our
/// own form it is no cell, so that pasting leaves its place as it is.
KELVANE_UTIL_EXPORT QMimeData* encodeForClipboard(const QItemSelectionModel* selectionModel,
                                                  const HbiIntervalIntSmallDisjoint& rows,
                                                  const HbiIntervalIntSmallDisjoint& columns,
                                                  QChar decimal = QLatin1Char('.'));

/// The block on the application's clipboard, one vector a row, as KudADataTable::createSamples
/// takes it: values in the unit of the column that they were copied from, texts where the clipboard
/// has only text, invalid for an undefined cell and where there is none. (KudTablePaste converts
/// and checks; this does not.)
///
/// `cellCount` is the number of cells of each vector; 0 leaves rows as long as they are, which
/// differs for text. `rows` and `columns` are those of the block that are wanted; empty for all.
/// The map gives columns a position by their name, and columns without one are dropped; without a
/// map the wanted columns go side by side. For text, which names no columns, its first row does.
/// Empty without a clipboard and for one without cells.
KELVANE_UTIL_EXPORT QList<QVector<QVariant>>
decodeClipBoard(int cellCount, const HbiIntervalIntSmallDisjoint& rows,
                const HbiIntervalIntSmallDisjoint& columns, const QMap<QString, int>& positions);
/// @}
} // namespace KudTableUtils
