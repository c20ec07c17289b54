#pragma once

#include <QtCore/QtGlobal>

#ifdef KELVANE_GEOS_BUILD
#define KELVANE_GEOS_EXPORT Q_DECL_EXPORT
#else
#define KELVANE_GEOS_EXPORT Q_DECL_IMPORT
#endif
