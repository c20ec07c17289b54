#include <basic/base/HbbHtml.h>

namespace
{
QString element(QLatin1String tag, const QString& html)
{
    return QLatin1Char('<') + tag + QLatin1Char('>') + html + QLatin1String("</") + tag +
           QLatin1Char('>');
}
} // namespace

QString HbbHtml::escape(const QString& text)
{
    return text.toHtmlEscaped();
}

QString HbbHtml::bold(const QString& html)
{
    return element(QLatin1String("b"), html);
}

QString HbbHtml::italic(const QString& html)
{
    return element(QLatin1String("i"), html);
}

QString HbbHtml::paragraph(const QString& html)
{
    return element(QLatin1String("p"), html);
}

QString HbbHtml::lineBreak()
{
    return QStringLiteral("<br/>");
}

QString HbbHtml::lines(const QStringList& html)
{
    return html.join(lineBreak());
}

QString HbbHtml::bulletList(const QStringList& items)
{
    QString list;
    for (const QString& item : items)
        list += element(QLatin1String("li"), item);
    return element(QLatin1String("ul"), list);
}
