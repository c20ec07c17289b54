#pragma once

#include <QtCore/QtGlobal>

#ifdef KELVANE_UTIL_BUILD
#define KELVANE_UTIL_EXPORT Q_DECL_EXPORT
#else
#define KELVANE_UTIL_EXPORT Q_DECL_IMPORT
#endif
