#pragma once

#include <util/filter/KufISampleFilterRule.h>

#include <QtCore/QCoreApplication>

/// Samples that a selection variable marks with 1; inverted, those that it marks with 0.
class KELVANE_UTIL_EXPORT KufSampleFilterRuleSelection final : public KufISampleFilterRule
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterRuleSelection)

public:
    explicit KufSampleFilterRuleSelection(bool invertSelection = false);
    ~KufSampleFilterRuleSelection() override;

    bool getInvertSelection() const { return m_invertSelection; }
    void setInvertSelection(bool invert) { m_invertSelection = invert; }

    QSharedPointer<KufISampleFilterRule> duplicate() const override;
    KufFilterRuleType getType() const override;
    QString getDescription(const HbdVariableDetails& details) const override;
    QString getShortDescription(const HbdVariableDetails& details,
                                bool withVariableName) const override;
    QVariantMap toQVariantMap() const override;
    void fromQVariantMap(const QVariantMap& map, int version) override;
    QStringList findInvalidFields(const QVariantMap& map, int version) const override;
    bool isEqual(const KufISampleFilterRule& other) const override;

    bool operator==(const KufSampleFilterRuleSelection& other) const
    {
        return m_invertSelection == other.m_invertSelection;
    }

private:
    struct Fields;

    bool m_invertSelection = false;
};
