#pragma once

#include <basic/base/HbbEFormat.h>

#include <QtCore/QVariant>

/// One cell of an output row: a value and, for a real, how it is written.
struct KueFormatedVariant {
    QVariant value;
    HbbEFormat format = HbbEFormat::DECIMAL;
    qint32 precision = 2; ///< number of digits, as the format counts them
};
