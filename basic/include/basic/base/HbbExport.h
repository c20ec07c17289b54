#pragma once

#include <QtCore/QtGlobal>

#ifdef KELVANE_BASIC_BUILD
#define KELVANE_BASIC_EXPORT Q_DECL_EXPORT
#else
#define KELVANE_BASIC_EXPORT Q_DECL_IMPORT
#endif
