#include <basic/data/HbdName.h>

QString Hbd::Name::Realization::getName(const QString& name, const QString& index)
{
    return name + QLatin1Char('[') + index + QLatin1Char(']');
}

QString Hbd::Name::Component::getName(const QString& name, const QString& component)
{
    return name + QLatin1Char('.') + component;
}
