#pragma once

#include "KuuCoordSystemBlock.h"

#include <util/utils/KuuCoordSystemConverter.h>

struct KuuCoordSystemConverter::Private {
    KuuCoordSystem from;
    KuuCoordSystem to;
    HbuUnit fromUnit; // of the plane
    HbuUnit toUnit;
    KuuCoordSystemTask task;

    Private(const KuuCoordSystem& fromSystem, const HbuUnit& fromWanted,
            const KuuCoordSystem& toSystem, const HbuUnit& toWanted);

    /// In several threads, see KuuCoordSystemConverter::convert. Counts points at `progress`, which
    /// may be null, and stops where it is cancelled.
    Counts convert(double* x, double* y, double* z, qint64 count, qint64 stride, int maxThreads,
                   HbcAProgress* progress) const;
};
