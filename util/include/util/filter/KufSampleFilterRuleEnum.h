#pragma once

#include <util/filter/KufISampleFilterRule.h>

#include <QtCore/QCoreApplication>

/// Samples whose category is one of the selected names; without any name, no sample at all.
class KELVANE_UTIL_EXPORT KufSampleFilterRuleEnum final : public KufISampleFilterRule
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterRuleEnum)

public:
    explicit KufSampleFilterRuleEnum(const QStringList& selectedList = QStringList());
    ~KufSampleFilterRuleEnum() override;

    const QStringList& getSelectedList() const { return m_selectedList; }
    void setSelectedList(const QStringList& names) { m_selectedList = names; }

    QSharedPointer<KufISampleFilterRule> duplicate() const override;
    KufFilterRuleType getType() const override;
    QString getDescription(const HbdVariableDetails& details) const override;
    QString getShortDescription(const HbdVariableDetails& details,
                                bool withVariableName) const override;
    QVariantMap toQVariantMap() const override;
    void fromQVariantMap(const QVariantMap& map, int version) override;
    QStringList findInvalidFields(const QVariantMap& map, int version) const override;
    bool isEqual(const KufISampleFilterRule& other) const override;

    bool operator==(const KufSampleFilterRuleEnum& other) const
    {
        return m_selectedList == other.m_selectedList;
    }

private:
    struct Fields;

    QStringList m_selectedList;
};
