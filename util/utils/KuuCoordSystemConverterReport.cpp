#include "KuuCoordSystemConverterPrivate.h"

QString KuuCoordSystemConverter::getReport() const
{
    return {};
}
QString KuuCoordSystemConverter::getReport(const Counts&) const
{
    return {};
}
