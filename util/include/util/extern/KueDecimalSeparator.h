#pragma once

#include <util/KuExport.h>

#include <basic/base/HbbAEnum.h>

#include <QtCore/QChar>

#define KUE_DECIMAL_SEPARATOR(ROW, Class)                                                          \
    ROW(Class, DOT, 0, QT_TRANSLATE_NOOP("KueDecimalSeparator", "Dot (.)"))                        \
    ROW(Class, COMMA, 1, QT_TRANSLATE_NOOP("KueDecimalSeparator", "Comma (,)"))

/// The decimal separator of delimited text that a user picks. The default is the dot.
class KELVANE_UTIL_EXPORT KueDecimalSeparator : public HbbAEnum
{
    HBB_ENUM(KueDecimalSeparator, KUE_DECIMAL_SEPARATOR)

public:
    /// The dot for '.', the comma for every other character.
    static KueDecimalSeparator fromChar(QChar character);

    /// The character of the item; a dot for an item that was registered at run time.
    QChar getChar() const;
};
