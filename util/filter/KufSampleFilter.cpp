#include <util/filter/Kuf.h>
#include <util/filter/KufISampleFilterRule.h>
#include <util/filter/KufSampleFilter.h>
#include <util/utils/KuuMementoCodec.h>

#include <basic/error/HbeUserError.h>

namespace
{
constexpr int MEMENTO_VERSION = 100;

/// The decoded value; a user error that names the place when it is missing or does not decode.
template <class T>
T required(const QVariantMap& map, const char* key, const QString& place)
{
    T value{};
    const auto found = map.constFind(QLatin1String(key));
    if (found == map.constEnd() || !KuuMementoCodec<T>::decode(*found, value))
        throw HbeUserError(QCoreApplication::translate(
                               "KufSampleFilter", "%1: the value of '%2' is missing or not valid.")
                               .arg(place, QLatin1String(key)));
    return value;
}

/// The same, but a missing one is an empty text.
QString optionalText(const QVariantMap& map, const char* key, const QString& place)
{
    return map.contains(QLatin1String(key)) ? required<QString>(map, key, place) : QString();
}

KudDatasetVariable readVariable(const QVariantMap& map, const QString& place)
{
    const auto support = required<QString>(map, "support", place);
    const auto name = required<QString>(map, "variable", place);
    return KudDatasetVariable::createComponent(support, name, optionalText(map, "index", place),
                                               optionalText(map, "component", place));
}
} // namespace

QString KufSampleFilter::getMementoRelation()
{
    return QStringLiteral("SampleFilter");
}

KufSampleFilter::KufSampleFilter(const QString& name)
    : KuuAMementoOriginator(getMementoRelation())
    , m_name(name)
{
}

KufSampleFilter::KufSampleFilter(const KufSampleFilter& other)
    : KufISampleFilter(other)
    , KuuAMementoOriginator(other)
    , m_name(other.m_name)
    , m_combination(other.m_combination)
    , m_rules(other.m_rules)
{
    for (Entry& entry : m_rules)
        entry.rule = entry.rule->duplicate();
}

KufSampleFilter& KufSampleFilter::operator=(const KufSampleFilter& other)
{
    KufSampleFilter copy(other);
    KuuAMementoOriginator::operator=(other);
    m_name = copy.m_name;
    m_combination = copy.m_combination;
    m_rules = copy.m_rules;
    return *this;
}

KufSampleFilter::~KufSampleFilter() = default;

const KufISampleFilterRule* KufSampleFilter::getRule(int index) const
{
    return m_rules.value(index).rule.data();
}

KudDatasetVariable KufSampleFilter::getVariable(int index) const
{
    return m_rules.value(index).variable;
}

QList<KudDatasetVariable> KufSampleFilter::getVariables() const
{
    QList<KudDatasetVariable> variables;
    for (const Entry& entry : m_rules)
        variables.append(entry.variable);
    return variables;
}

void KufSampleFilter::addRule(const KudDatasetVariable& variable, const KufISampleFilterRule& rule)
{
    m_rules.append({variable, rule.duplicate()});
}

bool KufSampleFilter::setRule(int index, const KudDatasetVariable& variable,
                              const KufISampleFilterRule& rule)
{
    if (index < 0 || index >= m_rules.size())
        return false;
    m_rules[index] = {variable, rule.duplicate()};
    return true;
}

bool KufSampleFilter::removeRule(int index)
{
    if (index < 0 || index >= m_rules.size())
        return false;
    m_rules.removeAt(index);
    m_combination.clear();
    return true;
}

void KufSampleFilter::clear()
{
    m_rules.clear();
    m_combination.clear();
}

QVariantMap KufSampleFilter::toQVariantMap() const
{
    QVariantList rules;
    for (const Entry& entry : m_rules) {
        QVariantMap map;
        map.insert(QStringLiteral("type"), entry.rule->getType().getKey());
        map.insert(QStringLiteral("support"), entry.variable.support());
        map.insert(QStringLiteral("variable"), entry.variable.variable());
        if (entry.variable.isRealization())
            map.insert(QStringLiteral("index"), entry.variable.index());
        if (entry.variable.isComponent())
            map.insert(QStringLiteral("component"), entry.variable.component());
        map.insert(QStringLiteral("rule"), entry.rule->toQVariantMap());
        map.insert(QStringLiteral("version"), KufISampleFilterRule::MAP_VERSION);
        rules.append(map);
    }
    return {{QStringLiteral("name"), m_name},
            {QStringLiteral("combination"), m_combination},
            {QStringLiteral("rules"), rules}};
}

KufSampleFilter::Entry KufSampleFilter::readEntry(const QVariant& stored, int index)
{
    const QString place = getRuleName(index);
    QVariantMap map;
    if (!KuuMementoCodec<QVariantMap>::decode(stored, map))
        throw HbeUserError(tr("%1: this is no rule.").arg(place));
    const auto type = required<KufFilterRuleType>(map, "type", place);
    const auto version = required<int>(map, "version", place);
    const auto fields = required<QVariantMap>(map, "rule", place);
    Entry entry{readVariable(map, place), Kuf::createFromType(type)};
    if (version < 1 || version > KufISampleFilterRule::MAP_VERSION || entry.rule.isNull())
        throw HbeUserError(
            tr("%1: rules of the version %2 cannot be read.").arg(place, QString::number(version)));
    const QStringList invalid = entry.rule->findInvalidFields(fields, version);
    if (!invalid.isEmpty())
        throw HbeUserError(
            tr("%1: the value of '%2' is missing or not valid, in the rule on the variable '%3'.")
                .arg(place, invalid.first(), entry.variable.getFullVariableName()));
    entry.rule->fromQVariantMap(fields, version);
    return entry;
}

void KufSampleFilter::fromQVariantMap(const QVariantMap& map)
{
    const QString place = tr("The sample filter");
    const auto name = required<QString>(map, "name", place);
    const QString combination = optionalText(map, "combination", place);
    const auto stored = required<QVariantList>(map, "rules", place);
    QVector<Entry> rules;
    for (int i = 0; i < stored.size(); ++i)
        rules.append(readEntry(stored.at(i), i));
    m_name = name;
    m_combination = combination;
    m_rules = rules;
}

bool KufSampleFilter::isEqual(const KufSampleFilter& other) const
{
    if (m_name != other.m_name || m_combination != other.m_combination ||
        m_rules.size() != other.m_rules.size())
        return false;
    for (int i = 0; i < m_rules.size(); ++i) {
        if (m_rules.at(i).variable != other.m_rules.at(i).variable ||
            !m_rules.at(i).rule->isEqual(*other.m_rules.at(i).rule))
            return false;
    }
    return true;
}

int KufSampleFilter::_getMementoVersion() const
{
    return MEMENTO_VERSION;
}

void KufSampleFilter::_buildMemento(KuuMemento& memento) const
{
    memento.setFields(toQVariantMap());
}

void KufSampleFilter::_setMemento(const KuuMemento& memento, bool)
{
    fromQVariantMap(memento.getFields());
}
