#pragma once

#include <util/KuExport.h>
#include <util/filter/KufFilterRuleType.h>

#include <QtCore/QSharedPointer>

class KufISampleFilterRule;

namespace Kuf
{
/// A default rule of the kind; null for a kind that a plug-in registered.
KELVANE_UTIL_EXPORT QSharedPointer<KufISampleFilterRule>
createFromType(const KufFilterRuleType& type);
} // namespace Kuf
