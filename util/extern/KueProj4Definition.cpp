#include <util/extern/KueProj4Definition.h>

#include <basic/base/HbbGlobal.h>

#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>
#include <utility>

namespace
{

struct Parameter {
    QString name;
    QString value; // null for a flag
};

QList<Parameter> parameters(const QString& text)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QList<Parameter> list;
    for (QString token : text.split(blanks, Qt::SkipEmptyParts)) {
        if (token.startsWith(QLatin1Char('+')))
            token.remove(0, 1);
        const int equals = token.indexOf(QLatin1Char('='));
        const QString name = token.left(equals);
        if (!name.isEmpty())
            list.append({name, equals < 0 ? QString() : token.mid(equals + 1)});
    }
    return list;
}

/// The first parameter of the name counts, as it does to PROJ.
const Parameter* find(const QList<Parameter>& list, const QString& name)
{
    const auto at = std::find_if(list.begin(), list.end(),
                                 [&name](const Parameter& p) { return p.name == name; });
    return at == list.end() ? nullptr : &*at;
}

/// "0.50" and ".5" say the same; towgs84 holds several numbers.
QString normalizedValue(const QString& value)
{
    QStringList parts = value.split(QLatin1Char(','));
    for (QString& part : parts) {
        const double number = HbbGlobal::convertString(part, HbbGlobal::D_FFFF);
        if (!HbbGlobal::isUndefined(number))
            part = QString::number(number, 'g', QLocale::FloatingPointShortest);
    }
    return parts.join(QLatin1Char(','));
}

bool changesNothing(const Parameter& parameter)
{
    return parameter.name == QLatin1String("no_defs") ||
           parameter.name == QLatin1String("wktext") ||
           (parameter.name == QLatin1String("type") && parameter.value == QLatin1String("crs"));
}

} // namespace

KueProj4Definition::KueProj4Definition(const QString& text)
    : m_text(text.trimmed())
{
}

bool KueProj4Definition::isValid() const
{
    return !getParameter(QStringLiteral("proj")).isEmpty() ||
           !getParameter(QStringLiteral("init")).isEmpty();
}

QString KueProj4Definition::getParameter(const QString& name) const
{
    const QList<Parameter> list = parameters(m_text);
    const Parameter* parameter = find(list, name);
    return parameter ? parameter->value : QString();
}

bool KueProj4Definition::hasParameter(const QString& name) const
{
    const QList<Parameter> list = parameters(m_text);
    return find(list, name) != nullptr;
}

QString KueProj4Definition::getNormalizedText() const
{
    QList<Parameter> list = parameters(m_text);
    list.erase(std::remove_if(list.begin(), list.end(), changesNothing), list.end());
    const auto order = [](const Parameter& parameter) {
        const bool isFirst =
            parameter.name == QLatin1String("proj") || parameter.name == QLatin1String("init");
        return std::make_pair(!isFirst, parameter.name);
    };
    std::stable_sort(list.begin(), list.end(), [&order](const Parameter& a, const Parameter& b) {
        return order(a) < order(b);
    });
    const auto end =
        std::unique(list.begin(), list.end(),
                    [](const Parameter& a, const Parameter& b) { return a.name == b.name; });
    QStringList tokens;
    std::for_each(list.begin(), end, [&tokens](const Parameter& parameter) {
        const QString flag = QLatin1Char('+') + parameter.name;
        tokens.append(parameter.value.isNull()
                          ? flag
                          : flag + QLatin1Char('=') + normalizedValue(parameter.value));
    });
    return tokens.join(QLatin1Char(' '));
}

bool KueProj4Definition::operator==(const KueProj4Definition& other) const
{
    return m_text == other.m_text || getNormalizedText() == other.getNormalizedText();
}
