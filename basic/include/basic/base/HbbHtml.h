#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

/// Pieces of HTML for messages and reports. Only `escape` takes plain text; the others take and
/// return HTML, so that they nest: bold(escape(name)) + lineBreak().
class KELVANE_BASIC_EXPORT HbbHtml
{
public:
    /// The text with "<", ">", "&" and the double quote written as entities.
    static QString escape(const QString& text);

    static QString bold(const QString& html);
    static QString italic(const QString& html);
    static QString paragraph(const QString& html);
    static QString lineBreak();

    /// The lines, one after the other, with a line break between them.
    static QString lines(const QStringList& html);
    static QString bulletList(const QStringList& items);
};
