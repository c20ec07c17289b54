#include <util/filter/Kuf.h>
#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>

HBB_ENUM_DEFINE(KufFilterRuleType, KUF_FILTER_RULE_TYPE, SELECTION, "filter\\Kuf")

QSharedPointer<KufISampleFilterRule> Kuf::createFromType(const KufFilterRuleType& type)
{
    switch (type.toEnum()) {
    case KufFilterRuleType::E_SELECTION:
        return QSharedPointer<KufSampleFilterRuleSelection>::create();
    case KufFilterRuleType::E_NUMERIC:
        return QSharedPointer<KufSampleFilterRuleNumeric>::create();
    case KufFilterRuleType::E_ALPHA:
        return QSharedPointer<KufSampleFilterRuleAlpha>::create();
    case KufFilterRuleType::E_ENUM:
        return QSharedPointer<KufSampleFilterRuleEnum>::create();
    }
    return QSharedPointer<KufISampleFilterRule>();
}
