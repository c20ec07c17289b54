#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QString>

/// How the columns of a realization or a component are named.
namespace Hbd::Name
{
namespace Realization
{
/// "Zn" and "3" give "Zn[3]".
KELVANE_BASIC_EXPORT QString getName(const QString& name, const QString& index);
} // namespace Realization

namespace Component
{
/// "Wind" and "X" give "Wind.X".
KELVANE_BASIC_EXPORT QString getName(const QString& name, const QString& component);
} // namespace Component
} // namespace Hbd::Name
