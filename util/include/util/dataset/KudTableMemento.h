#pragma once

#include <util/KuExport.h>

#include <QtCore/QVariantMap>

class HbdDataTable;
class KudSelector;
class QBitArray;

/// How a table of columns stands in a memento: details, catalogues and values, each column's values
/// as one compact text. docs/formats/dataset-memento.md describes the form for other programs.
namespace KudTableMemento
{
/// Temporary variables are left out.
KELVANE_UTIL_EXPORT QVariantMap toMap(const HbdDataTable& table);

/// The table that was saved: values equal bit for bit. A user error that names the variable when
/// the map does not hold one.
KELVANE_UTIL_EXPORT HbdDataTable fromMap(const QVariantMap& map);

/// Adds the table's mask, a bit a sample; nothing where nothing is masked.
KELVANE_UTIL_EXPORT void addMask(const KudSelector& mask, QVariantMap& map);

/// The mask that was added, empty for none. A user error when what is there is no mask of so many
/// samples.
KELVANE_UTIL_EXPORT QBitArray getMask(const QVariantMap& map, int sampleCount);
} // namespace KudTableMemento
