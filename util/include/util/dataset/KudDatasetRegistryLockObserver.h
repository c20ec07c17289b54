#pragma once

#include <util/dataset/KudDatasetRegistry.h>
#include <util/observable/KuoLockObserver.h>

/// Keeps an observer from hearing the dataset registry for the guard's lifetime. What happens
/// meanwhile is lost to it.
class KudDatasetRegistryLockObserver : public KuoLockObserver<KudDatasetRegistryModif>
{
public:
    explicit KudDatasetRegistryLockObserver(KuoIObserver<KudDatasetRegistryModif>* observer)
        : KuoLockObserver(observer, &KudDatasetRegistry::getInstance())
    {
    }
};
