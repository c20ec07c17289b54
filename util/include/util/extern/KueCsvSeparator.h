#pragma once

#include <util/KuExport.h>

#include <basic/base/HbbAEnum.h>

#include <QtCore/QChar>

#define KUE_CSV_SEPARATOR(ROW, Class)                                                              \
    ROW(Class, COMMA, 0, QT_TRANSLATE_NOOP("KueCsvSeparator", "Comma (,)"))                        \
    ROW(Class, SEMICOLON, 1, QT_TRANSLATE_NOOP("KueCsvSeparator", "Semicolon (;)"))

/// The column separator of delimited text that a user picks. The default is the comma. Other
/// separators (a tab) reach KueCsv as a bare character.
class KELVANE_UTIL_EXPORT KueCsvSeparator : public HbbAEnum
{
    HBB_ENUM(KueCsvSeparator, KUE_CSV_SEPARATOR)

public:
    /// The comma for ',', the semicolon for every other character.
    static KueCsvSeparator fromChar(QChar character);

    /// The character of the item; a comma for an item that was registered at run time.
    QChar getChar() const;
};
