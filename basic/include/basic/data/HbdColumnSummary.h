#pragma once

#include <basic/base/HbbExport.h>
#include <basic/base/HbbGlobal.h>
#include <basic/data/HbdSpan.h>

#include <QtCore/QVariant>

class HbdAVariable;

/// What a column holds in brief: how many values are defined, and for numbers their extremes and
/// their mean. A plain value, made in one pass over the column.
///
/// Undefined values count and do nothing else. Infinities are values: they can be an extreme, and a
/// mean with infinities of one sign is that infinity, with both signs undefined. The mean of finite
/// values is that of their exact sum, to a few units in the last place, whatever their order and
/// however large they are.
struct KELVANE_BASIC_EXPORT HbdColumnSummary {
    qint64 defined = 0;
    qint64 undefined = 0;
    QVariant minimum; ///< double, or qint64 for integers; invalid where there is none
    QVariant maximum; ///< the same
    double mean = HbbGlobal::D_FFFF; ///< HbbGlobal::D_FFFF where there is none

    /// Of any column; one that does not hold numbers (text, categories …) is counted only.
    static HbdColumnSummary of(const HbdAVariable& column);

    static HbdColumnSummary of(HbdSpan<const double> values);
    static HbdColumnSummary of(HbdSpan<const float> values);
    static HbdColumnSummary of(HbdSpan<const qint64> values);
};
