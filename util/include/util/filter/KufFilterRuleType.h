#pragma once

#include <util/KuExport.h>

#include <basic/base/HbbAEnum.h>

// clang-format off
#define KUF_FILTER_RULE_TYPE(ROW, Class)                                                           \
    ROW(Class, SELECTION, 0, QT_TRANSLATE_NOOP("KufFilterRuleType", "Selection"))                  \
    ROW(Class, NUMERIC, 1, QT_TRANSLATE_NOOP("KufFilterRuleType", "Numeric"))                      \
    ROW(Class, ALPHA, 2, QT_TRANSLATE_NOOP("KufFilterRuleType", "Alpha"))                          \
    ROW(Class, ENUM, 3, QT_TRANSLATE_NOOP("KufFilterRuleType", "Categorical"))
// clang-format on

/// The kinds of rules of a sample filter.
class KELVANE_UTIL_EXPORT KufFilterRuleType : public HbbAEnum
{
    HBB_ENUM(KufFilterRuleType, KUF_FILTER_RULE_TYPE)
};
