#include "KuuCoordSystemConverterPrivate.h"

#include <basic/base/HbbGlobal.h>

QRectF KuuCoordSystemConverter::convert(const QRectF& rectangle) const
{
    return rectangle;
}

HbgBox KuuCoordSystemConverter::convert(const HbgBox& box) const
{
    return box;
}
