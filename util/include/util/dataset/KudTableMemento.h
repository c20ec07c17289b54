#pragma once

#include <util/KuExport.h>

#include <QtCore/QVariantMap>

class HbdDataTable;

/// How a table of columns stands in a memento: details, catalogues and values, each column's values
/// as one compact text. docs/formats/dataset-memento.md describes the form for other programs.
namespace KudTableMemento
{
/// Temporary variables are left out.
KELVANE_UTIL_EXPORT QVariantMap toMap(const HbdDataTable& table);

/// The table that was saved: values equal bit for bit. A user error that names the variable when
/// the map does not hold one.
KELVANE_UTIL_EXPORT HbdDataTable fromMap(const QVariantMap& map);
} // namespace KudTableMemento
