#include <util/extern/KueCsvSeparator.h>
#include <util/extern/KueDecimalSeparator.h>

HBB_ENUM_DEFINE(KueCsvSeparator, KUE_CSV_SEPARATOR, COMMA, "extern\\KueCsv")
HBB_ENUM_DEFINE(KueDecimalSeparator, KUE_DECIMAL_SEPARATOR, DOT, "extern\\KueCsv")

// Deliberately one-sided: an unknown character falls on the second item.
KueCsvSeparator KueCsvSeparator::fromChar(QChar character)
{
    return character == QLatin1Char(',') ? COMMA : SEMICOLON;
}

QChar KueCsvSeparator::getChar() const
{
    return QLatin1Char(*this == SEMICOLON ? ';' : ',');
}

KueDecimalSeparator KueDecimalSeparator::fromChar(QChar character)
{
    return character == QLatin1Char('.') ? DOT : COMMA;
}

QChar KueDecimalSeparator::getChar() const
{
    return QLatin1Char(*this == COMMA ? ',' : '.');
}
