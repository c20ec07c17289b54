#include <util/filter/KufISampleFilter.h>
#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>
#include <util/utils/KuuMementoFields.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>

// The rules as values, and their stored forms. How they describe themselves stands in
// KufSampleFilterRuleDescriptions.cpp.

HBB_ENUM_DEFINE(KufSampleFilterRuleNumeric::Mode, KUF_NUMERIC_MODE, IS_DEFINED,
                "filter\\KufSampleFilterRules")
HBB_ENUM_DEFINE(KufSampleFilterRuleNumeric::CompareOperator, KUF_COMPARE_OPERATOR, EQUAL,
                "filter\\KufSampleFilterRules")
HBB_ENUM_DEFINE(KufSampleFilterRuleNumeric::IntervalOperator, KUF_INTERVAL_OPERATOR,
                ITV_LESS_OR_EQUAL_TO, "filter\\KufSampleFilterRules")
HBB_ENUM_DEFINE(KufSampleFilterRuleAlpha::Mode, KUF_ALPHA_MODE, CONTAINS,
                "filter\\KufSampleFilterRules")

namespace
{
constexpr char SOURCE_PATH[] = "filter\\KufSampleFilterRules";

constexpr QLatin1String LOWER_OPERATOR{"intervalLowerOperator", 21};
constexpr QLatin1String UPPER_OPERATOR{"intervalUpperOperator", 21};

bool isKnownVersion(int version)
{
    return version == 1 || version == KufISampleFilterRule::MAP_VERSION;
}

QString versionMessage(int version)
{
    return QStringLiteral("providing version = %1").arg(version);
}

void warn(const char* owner, const QStringList& keys, const QVariantMap& map)
{
    for (const QString& key : keys)
        kuuWarnInvalidField(QLatin1String(owner), key, map.value(key));
}

/// The decoded value, or the default when the key is missing; a value that does not decode gives
/// the default, too, and its key is remembered.
template <class T>
T valueOf(const QVariantMap& map, const char* key, QStringList& invalid)
{
    T value{};
    const auto found = map.constFind(QLatin1String(key));
    if (found != map.constEnd() && !KuuMementoCodec<T>::decode(*found, value))
        invalid.append(found.key());
    return value;
}

/// The keys whose values this kind of rule cannot read, and those that are missing though a stored
/// rule has them: all but the operators of an interval, and of old rules the one that says what is
/// asked.
template <class Rule, class Fields>
QStringList findInvalid(const QVariantMap& map, int version)
{
    if (!isKnownVersion(version))
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, versionMessage(version));
    Rule scratch;
    QStringList invalid = Fields::read(scratch, map, version);
    const QStringList keys =
        version == 1 ? QStringList(QLatin1String(Fields::OLD_MODE)) : Rule().toQVariantMap().keys();
    for (const QString& key : keys) {
        if (!map.contains(key) && key != LOWER_OPERATOR && key != UPPER_OPERATOR)
            invalid.append(key);
    }
    return invalid;
}

template <class Rule>
bool isSame(const Rule& rule, const KufISampleFilterRule& other)
{
    const auto* same = dynamic_cast<const Rule*>(&other);
    return same != nullptr && *same == rule;
}
} // namespace

KufISampleFilterRule::~KufISampleFilterRule() = default;
KufISampleFilter::~KufISampleFilter() = default;

QString KufISampleFilter::getRuleName(int index)
{
    return QLatin1Char('R') + QString::number(index + 1);
}

// Selection

struct KufSampleFilterRuleSelection::Fields {
    using Rule = KufSampleFilterRuleSelection;
    static constexpr char OLD_MODE[] = "invert";

    static const KuuMementoFields<Rule>& rows()
    {
        static const KuuMementoFields<Rule> fields = {{"invert", &Rule::m_invertSelection}};
        return fields;
    }

    static QStringList read(Rule& rule, const QVariantMap& map, int)
    {
        rule = Rule();
        return rows().restoreQuietly(rule, map);
    }
};

KufSampleFilterRuleSelection::KufSampleFilterRuleSelection(bool invertSelection)
    : m_invertSelection(invertSelection)
{
}

KufSampleFilterRuleSelection::~KufSampleFilterRuleSelection() = default;

bool KufSampleFilterRuleSelection::isEqual(const KufISampleFilterRule& other) const
{
    return isSame(*this, other);
}

QSharedPointer<KufISampleFilterRule> KufSampleFilterRuleSelection::duplicate() const
{
    return QSharedPointer<KufSampleFilterRuleSelection>::create(*this);
}

KufFilterRuleType KufSampleFilterRuleSelection::getType() const
{
    return KufFilterRuleType::SELECTION;
}

QVariantMap KufSampleFilterRuleSelection::toQVariantMap() const
{
    QVariantMap map;
    Fields::rows().build(*this, map);
    return map;
}

void KufSampleFilterRuleSelection::fromQVariantMap(const QVariantMap& map, int version)
{
    if (!isKnownVersion(version))
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, versionMessage(version));
    warn("KufSampleFilterRuleSelection", Fields::read(*this, map, version), map);
}

QStringList KufSampleFilterRuleSelection::findInvalidFields(const QVariantMap& map,
                                                            int version) const
{
    return findInvalid<KufSampleFilterRuleSelection, Fields>(map, version);
}

// Numeric

struct KufSampleFilterRuleNumeric::Fields {
    using Rule = KufSampleFilterRuleNumeric;
    static constexpr char OLD_MODE[] = "mode";

    static const KuuMementoFields<Rule>& rows()
    {
        static const KuuMementoFields<Rule> fields = {
            {"mode", &Rule::m_mode},
            {"compareOperator", &Rule::m_compareOperator},
            {"compareValue", &Rule::m_compareValue},
            {"compareTolerance", &Rule::m_tolerance},
            {LOWER_OPERATOR.data(), &Rule::m_lowerOperator},
            {"intervalLower", &Rule::m_lowerBound},
            {UPPER_OPERATOR.data(), &Rule::m_upperOperator},
            {"intervalUpper", &Rule::m_upperBound},
        };
        return fields;
    }

    static QStringList read(Rule& rule, const QVariantMap& map, int version)
    {
        QStringList invalid = version == 1 ? readOld(rule, map) : readNew(rule, map);
        for (double* number :
             {&rule.m_compareValue, &rule.m_tolerance, &rule.m_lowerBound, &rule.m_upperBound})
            *number = HbbGlobal::normalized(*number);
        return invalid;
    }

    static QStringList readNew(Rule& rule, const QVariantMap& map)
    {
        rule = Rule();
        // A missing operator excludes its bound; one that is unknown falls back to the default.
        if (!map.contains(LOWER_OPERATOR))
            rule.m_lowerOperator = IntervalOperator::ITV_LESS_THAN;
        if (!map.contains(UPPER_OPERATOR))
            rule.m_upperOperator = IntervalOperator::ITV_LESS_THAN;
        return rows().restoreQuietly(rule, map);
    }

    static QStringList readOld(Rule& rule, const QVariantMap& map)
    {
        QStringList invalid;
        const auto compare = [&](const CompareOperator& op, const char* key) {
            rule.m_mode = Mode::COMPARE;
            rule.m_compareOperator = op;
            rule.m_compareValue = valueOf<double>(map, key, invalid);
        };
        switch (valueOf<int>(map, "mode", invalid)) {
        case 0:
            rule.m_mode = Mode::IS_DEFINED;
            break;
        case 1:
            compare(CompareOperator::GREATER_THAN, "greater_than");
            break;
        case 2:
            compare(CompareOperator::LESS_THAN, "less_than");
            break;
        case 3:
            compare(CompareOperator::EQUAL, "equal_to");
            break;
        case 4:
        case 5: // the two old kinds of ranges load alike
            rule.m_mode = Mode::RANGE;
            rule.m_lowerOperator = IntervalOperator::ITV_LESS_OR_EQUAL_TO;
            rule.m_upperOperator = IntervalOperator::ITV_LESS_OR_EQUAL_TO;
            rule.m_lowerBound = valueOf<double>(map, "range_min", invalid);
            rule.m_upperBound = valueOf<double>(map, "range_max", invalid);
            break;
        default:
            break;
        }
        rule.m_tolerance = valueOf<double>(map, "tolerance", invalid);
        return invalid;
    }
};

KufSampleFilterRuleNumeric::KufSampleFilterRuleNumeric() = default;

KufSampleFilterRuleNumeric::KufSampleFilterRuleNumeric(const CompareOperator& compareOperator,
                                                       double value, double tolerance)
    : m_mode(Mode::COMPARE)
    , m_compareOperator(compareOperator)
    , m_compareValue(HbbGlobal::normalized(value))
    , m_tolerance(HbbGlobal::normalized(tolerance))
{
}

KufSampleFilterRuleNumeric::KufSampleFilterRuleNumeric(double lowerBound,
                                                       const IntervalOperator& lowerOperator,
                                                       double upperBound,
                                                       const IntervalOperator& upperOperator)
    : m_mode(Mode::RANGE)
    , m_lowerOperator(lowerOperator)
    , m_upperOperator(upperOperator)
    , m_lowerBound(HbbGlobal::normalized(lowerBound))
    , m_upperBound(HbbGlobal::normalized(upperBound))
{
}

KufSampleFilterRuleNumeric::~KufSampleFilterRuleNumeric() = default;

void KufSampleFilterRuleNumeric::setCompareValue(double value)
{
    m_compareValue = HbbGlobal::normalized(value);
}

void KufSampleFilterRuleNumeric::setTolerance(double tolerance)
{
    m_tolerance = HbbGlobal::normalized(tolerance);
}

void KufSampleFilterRuleNumeric::setLowerBound(double bound)
{
    m_lowerBound = HbbGlobal::normalized(bound);
}

void KufSampleFilterRuleNumeric::setUpperBound(double bound)
{
    m_upperBound = HbbGlobal::normalized(bound);
}

bool KufSampleFilterRuleNumeric::usesTolerance() const
{
    return m_compareOperator == CompareOperator::EQUAL ||
           m_compareOperator == CompareOperator::NOT_EQUAL;
}

bool KufSampleFilterRuleNumeric::isEqual(const KufISampleFilterRule& other) const
{
    return isSame(*this, other);
}

QSharedPointer<KufISampleFilterRule> KufSampleFilterRuleNumeric::duplicate() const
{
    return QSharedPointer<KufSampleFilterRuleNumeric>::create(*this);
}

KufFilterRuleType KufSampleFilterRuleNumeric::getType() const
{
    return KufFilterRuleType::NUMERIC;
}

QVariantMap KufSampleFilterRuleNumeric::toQVariantMap() const
{
    QVariantMap map;
    Fields::rows().build(*this, map);
    return map;
}

void KufSampleFilterRuleNumeric::fromQVariantMap(const QVariantMap& map, int version)
{
    if (!isKnownVersion(version))
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, versionMessage(version));
    warn("KufSampleFilterRuleNumeric", Fields::read(*this, map, version), map);
}

QStringList KufSampleFilterRuleNumeric::findInvalidFields(const QVariantMap& map, int version) const
{
    return findInvalid<KufSampleFilterRuleNumeric, Fields>(map, version);
}

bool KufSampleFilterRuleNumeric::operator==(const KufSampleFilterRuleNumeric& other) const
{
    return m_mode == other.m_mode && m_compareOperator == other.m_compareOperator &&
           m_compareValue == other.m_compareValue && m_tolerance == other.m_tolerance &&
           m_lowerOperator == other.m_lowerOperator && m_lowerBound == other.m_lowerBound &&
           m_upperOperator == other.m_upperOperator && m_upperBound == other.m_upperBound;
}

bool KufSampleFilterRuleNumeric::isSameCondition(const KufSampleFilterRuleNumeric& other) const
{
    if (m_mode != other.m_mode)
        return false;
    if (m_mode == Mode::COMPARE)
        return m_compareOperator == other.m_compareOperator &&
               m_compareValue == other.m_compareValue &&
               (!usesTolerance() || m_tolerance == other.m_tolerance);
    return m_mode == Mode::IS_DEFINED ||
           (m_lowerOperator == other.m_lowerOperator && m_lowerBound == other.m_lowerBound &&
            m_upperOperator == other.m_upperOperator && m_upperBound == other.m_upperBound);
}

// Alpha

struct KufSampleFilterRuleAlpha::Fields {
    using Rule = KufSampleFilterRuleAlpha;
    static constexpr char OLD_MODE[] = "mode";

    static const KuuMementoFields<Rule>& rows()
    {
        static const KuuMementoFields<Rule> fields = {
            {"mode", &Rule::m_mode},
            {"contains", &Rule::m_contains},
            {"equalTo", &Rule::m_equalTo},
            {"notEqualTo", &Rule::m_notEqualTo},
        };
        return fields;
    }

    static QStringList read(Rule& rule, const QVariantMap& map, int version)
    {
        rule = Rule();
        return version == 1 ? readOld(rule, map) : rows().restoreQuietly(rule, map);
    }

    static QStringList readOld(Rule& rule, const QVariantMap& map)
    {
        QStringList invalid;
        rule.m_contains = valueOf<QString>(map, "contains", invalid);
        rule.m_equalTo = valueOf<QString>(map, "equal_to", invalid);
        rule.m_notEqualTo = valueOf<QString>(map, "not_equal_to", invalid);
        QStringList noNumber;
        const int value = valueOf<int>(map, "mode", noNumber);
        if (noNumber.isEmpty() && Mode::existsValue(value))
            rule.m_mode = Mode::fromValue(value);
        else
            rule.m_mode = valueOf<Mode>(map, "mode", invalid);
        return invalid;
    }
};

KufSampleFilterRuleAlpha::KufSampleFilterRuleAlpha() = default;

KufSampleFilterRuleAlpha::KufSampleFilterRuleAlpha(const Mode& mode, const QString& text)
    : m_mode(mode)
{
    if (mode == Mode::CONTAINS)
        m_contains = text;
    else
        (mode == Mode::EQUAL_TO ? m_equalTo : m_notEqualTo) = text;
}

KufSampleFilterRuleAlpha::~KufSampleFilterRuleAlpha() = default;

const QString& KufSampleFilterRuleAlpha::getText() const
{
    if (m_mode == Mode::CONTAINS)
        return m_contains;
    return m_mode == Mode::EQUAL_TO ? m_equalTo : m_notEqualTo;
}

bool KufSampleFilterRuleAlpha::isEqual(const KufISampleFilterRule& other) const
{
    return isSame(*this, other);
}

QSharedPointer<KufISampleFilterRule> KufSampleFilterRuleAlpha::duplicate() const
{
    return QSharedPointer<KufSampleFilterRuleAlpha>::create(*this);
}

KufFilterRuleType KufSampleFilterRuleAlpha::getType() const
{
    return KufFilterRuleType::ALPHA;
}

QVariantMap KufSampleFilterRuleAlpha::toQVariantMap() const
{
    QVariantMap map;
    Fields::rows().build(*this, map);
    return map;
}

void KufSampleFilterRuleAlpha::fromQVariantMap(const QVariantMap& map, int version)
{
    if (!isKnownVersion(version))
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, versionMessage(version));
    warn("KufSampleFilterRuleAlpha", Fields::read(*this, map, version), map);
}

QStringList KufSampleFilterRuleAlpha::findInvalidFields(const QVariantMap& map, int version) const
{
    return findInvalid<KufSampleFilterRuleAlpha, Fields>(map, version);
}

bool KufSampleFilterRuleAlpha::operator==(const KufSampleFilterRuleAlpha& other) const
{
    return m_mode == other.m_mode && m_contains == other.m_contains &&
           m_equalTo == other.m_equalTo && m_notEqualTo == other.m_notEqualTo;
}

// Categorical

struct KufSampleFilterRuleEnum::Fields {
    using Rule = KufSampleFilterRuleEnum;
    static constexpr char OLD_MODE[] = "selected_list";

    static const KuuMementoFields<Rule>& rows()
    {
        static const KuuMementoFields<Rule> fields = {{"selectedList", &Rule::m_selectedList}};
        return fields;
    }

    static QStringList read(Rule& rule, const QVariantMap& map, int version)
    {
        rule = Rule();
        if (version != 1)
            return rows().restoreQuietly(rule, map);
        QStringList invalid;
        rule.m_selectedList = valueOf<QStringList>(map, "selected_list", invalid);
        return invalid;
    }
};

KufSampleFilterRuleEnum::KufSampleFilterRuleEnum(const QStringList& selectedList)
    : m_selectedList(selectedList)
{
}

KufSampleFilterRuleEnum::~KufSampleFilterRuleEnum() = default;

bool KufSampleFilterRuleEnum::isEqual(const KufISampleFilterRule& other) const
{
    return isSame(*this, other);
}

QSharedPointer<KufISampleFilterRule> KufSampleFilterRuleEnum::duplicate() const
{
    return QSharedPointer<KufSampleFilterRuleEnum>::create(*this);
}

KufFilterRuleType KufSampleFilterRuleEnum::getType() const
{
    return KufFilterRuleType::ENUM;
}

QVariantMap KufSampleFilterRuleEnum::toQVariantMap() const
{
    QVariantMap map;
    Fields::rows().build(*this, map);
    return map;
}

void KufSampleFilterRuleEnum::fromQVariantMap(const QVariantMap& map, int version)
{
    if (!isKnownVersion(version))
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, versionMessage(version));
    warn("KufSampleFilterRuleEnum", Fields::read(*this, map, version), map);
}

QStringList KufSampleFilterRuleEnum::findInvalidFields(const QVariantMap& map, int version) const
{
    return findInvalid<KufSampleFilterRuleEnum, Fields>(map, version);
}
