#pragma once

#include <util/filter/KufISampleFilterRule.h>

#include <QtCore/QCoreApplication>

// clang-format off
#define KUF_NUMERIC_MODE(ROW, Class)                                                               \
    ROW(Class, IS_DEFINED, 0, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::Mode", "V is Defined")) \
    ROW(Class, COMPARE, 1, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::Mode", "V compares to")) \
    ROW(Class, RANGE, 2, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::Mode", "V is in range"))

#define KUF_COMPARE_OPERATOR(ROW, Class)                                                           \
    ROW(Class, LESS_THAN, 0, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::CompareOperator", "<")) \
    ROW(Class, LESS_OR_EQUAL_TO, 1, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::CompareOperator", "≤")) \
    ROW(Class, GREATER_THAN, 2, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::CompareOperator", ">")) \
    ROW(Class, GREATER_OR_EQUAL_TO, 3, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::CompareOperator", "≥")) \
    ROW(Class, EQUAL, 4, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::CompareOperator", "=")) \
    ROW(Class, NOT_EQUAL, 5, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::CompareOperator", "≠"))

#define KUF_INTERVAL_OPERATOR(ROW, Class)                                                          \
    ROW(Class, ITV_LESS_THAN, 0, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::IntervalOperator", "<")) \
    ROW(Class, ITV_LESS_OR_EQUAL_TO, 1, QT_TRANSLATE_NOOP("KufSampleFilterRuleNumeric::IntervalOperator", "≤"))
// clang-format on

/// A condition on numbers. It applies to reals, integers, opacities, selections (0 and 1) and dates
/// (milliseconds since 1970-01-01 UTC); "is defined" applies to every column.
///
/// The fields of the modes that are not in use are kept, so that switching the mode loses nothing.
/// Equality and its negation take the tolerance into account: v - t <= V <= v + t. An infinity is a
/// value like any other; NaN is stored as the undefined real, with which nothing can be compared
/// (KufSampleFilterValidator).
class KELVANE_UTIL_EXPORT KufSampleFilterRuleNumeric final : public KufISampleFilterRule
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterRuleNumeric)

public:
    class KELVANE_UTIL_EXPORT Mode : public HbbAEnum
    {
        HBB_ENUM(Mode, KUF_NUMERIC_MODE)
    };
    class KELVANE_UTIL_EXPORT CompareOperator : public HbbAEnum
    {
        HBB_ENUM(CompareOperator, KUF_COMPARE_OPERATOR)
    };
    /// How V stands to a bound: lower bound < V, V <= upper bound.
    class KELVANE_UTIL_EXPORT IntervalOperator : public HbbAEnum
    {
        HBB_ENUM(IntervalOperator, KUF_INTERVAL_OPERATOR)
    };

    /// "V is Defined".
    KufSampleFilterRuleNumeric();
    /// "V compares to".
    KufSampleFilterRuleNumeric(const CompareOperator& compareOperator, double value,
                               double tolerance = 0.0);
    /// "V is in range".
    KufSampleFilterRuleNumeric(double lowerBound, const IntervalOperator& lowerOperator,
                               double upperBound, const IntervalOperator& upperOperator);
    ~KufSampleFilterRuleNumeric() override;

    const Mode& getMode() const { return m_mode; }
    void setMode(const Mode& mode) { m_mode = mode; }

    const CompareOperator& getCompareOperator() const { return m_compareOperator; }
    void setCompareOperator(const CompareOperator& op) { m_compareOperator = op; }
    double getCompareValue() const { return m_compareValue; }
    void setCompareValue(double value);
    double getTolerance() const { return m_tolerance; }
    void setTolerance(double tolerance);
    /// The operator in use is equality or its negation.
    bool usesTolerance() const;

    double getLowerBound() const { return m_lowerBound; }
    void setLowerBound(double bound);
    double getUpperBound() const { return m_upperBound; }
    void setUpperBound(double bound);
    const IntervalOperator& getLowerOperator() const { return m_lowerOperator; }
    void setLowerOperator(const IntervalOperator& op) { m_lowerOperator = op; }
    const IntervalOperator& getUpperOperator() const { return m_upperOperator; }
    void setUpperOperator(const IntervalOperator& op) { m_upperOperator = op; }

    QSharedPointer<KufISampleFilterRule> duplicate() const override;
    KufFilterRuleType getType() const override;
    QString getDescription(const HbdVariableDetails& details) const override;
    QString getShortDescription(const HbdVariableDetails& details,
                                bool withVariableName) const override;
    QVariantMap toQVariantMap() const override;
    void fromQVariantMap(const QVariantMap& map, int version) override;
    QStringList findInvalidFields(const QVariantMap& map, int version) const override;
    bool isEqual(const KufISampleFilterRule& other) const override;

    /// All fields, those of the modes that are not in use included.
    bool operator==(const KufSampleFilterRuleNumeric& other) const;

    /// True when both select the same: the fields of the mode in use are equal.
    bool isSameCondition(const KufSampleFilterRuleNumeric& other) const;

private:
    struct Fields;

    QString describe() const;
    QString describeShortly() const;

    Mode m_mode;
    CompareOperator m_compareOperator;
    IntervalOperator m_lowerOperator;
    IntervalOperator m_upperOperator;
    double m_compareValue = 0.0;
    double m_tolerance = 0.0;
    double m_lowerBound = 0.0;
    double m_upperBound = 0.0;
};
