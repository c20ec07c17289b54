#include <basic/calc/HbcCancelled.h>

#include <QtCore/QCoreApplication>

HbcCancelled::HbcCancelled()
    : HbeError(QCoreApplication::translate("HbcCancelled", "The operation was cancelled."))
{
}

HbcCancelled::~HbcCancelled() = default;
