#include <util/observable/KuoAObservable.h>

#include <basic/base/HbbDebug.h>

void Kuo::warnSuspiciousRecursion()
{
    HbbDebug::printWarning(QStringLiteral("KuoAObservable: suspicious recursion detected.\n"
                                          "Maybe some KuoLock/KuoLockObserver can help you?!?"));
}
