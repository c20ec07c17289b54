#include "KufRulePredicate.h"

#include <util/filter/KufSampleFilterRuleAlpha.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleSelection.h>

#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>

#include <QtCore/QSet>
#include <QtCore/QStringMatcher>
#include <QtCore/QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace
{
constexpr double INF = std::numeric_limits<double>::infinity();

/// One bit of each of 64 bytes that are 0 or 1, the first one lowest.
quint64 packFlags(const quint8* flags)
{
    quint64 word = 0;
#ifdef __SSE2__
    for (int i = 0; i < 4; ++i) {
        const __m128i flag = _mm_load_si128(reinterpret_cast<const __m128i*>(flags) + i);
        const int bits = _mm_movemask_epi8(_mm_slli_epi16(flag, 7));
        word |= quint64(static_cast<unsigned>(bits)) << (16 * i);
    }
#else
    for (int i = 0; i < 8; ++i) {
        // The product moves the lowest bit of byte k to bit 56 + k; no two bits meet, none carries.
        const quint64 eight = qFromLittleEndian<quint64>(flags + 8 * i);
        word |= (eight * Q_UINT64_C(0x0102040810204080) >> 56) << (8 * i);
    }
#endif
    return word;
}

/// Asks for the 64 values that lie a page further on. The processor's own prefetching
/// stops at the end of each page of memory, which costs more than all the comparisons.
template <class T>
inline void prefetchBeyond(const T* values)
{
#ifdef __GNUC__
    constexpr quintptr PAGE = 4096;
    constexpr quintptr LINE = 64;
    const auto next = reinterpret_cast<quintptr>(values) + PAGE; // may lie beyond the column
    for (quintptr at = 0; at < 64 * sizeof(T); at += LINE)
        __builtin_prefetch(reinterpret_cast<const void*>(next + at));
#else
    Q_UNUSED(values)
#endif
}

template <class T, class Test>
void fillWords(const T* values, int count, quint64* words, const Test& test)
{
    // Flags first: a loop without dependencies, which the compiler turns into vector instructions.
    alignas(64) quint8 flags[64];
    for (; count >= 64; count -= 64, values += 64) {
        prefetchBeyond(values);
        for (int i = 0; i < 64; ++i)
            flags[i] = static_cast<quint8>(test(values[i]));
        *words++ = packFlags(flags);
    }
    if (count > 0) {
        std::memset(flags, 0, sizeof flags);
        for (int i = 0; i < count; ++i)
            flags[i] = static_cast<quint8>(test(values[i]));
        *words = packFlags(flags);
    }
}

#if defined(__x86_64__) && defined(__GNUC__)
/// Four reals at a time, as NumPy takes them on such a processor.
__attribute__((target("avx2"))) void fillIntervalAvx2(const double* values, int wordCount,
                                                      quint64* words, double min, double max)
{
    const __m256d least = _mm256_set1_pd(min);
    const __m256d greatest = _mm256_set1_pd(max);
    for (int w = 0; w < wordCount; ++w, values += 64) {
        prefetchBeyond(values);
        quint64 word = 0;
        for (int i = 0; i < 64; i += 4) {
            const __m256d v = _mm256_loadu_pd(values + i);
            const __m256d in = _mm256_and_pd(_mm256_cmp_pd(v, least, _CMP_GE_OQ),
                                             _mm256_cmp_pd(v, greatest, _CMP_LE_OQ));
            word |= quint64(static_cast<unsigned>(_mm256_movemask_pd(in))) << i;
        }
        words[w] = word;
    }
}
#endif

/// The bits of the reals from `min` to `max`.
void fillInterval(const double* values, int count, quint64* words, double min, double max)
{
#if defined(__x86_64__) && defined(__GNUC__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    if (hasAvx2) {
        const int wordCount = count / 64;
        fillIntervalAvx2(values, wordCount, words, min, max);
        values += 64 * wordCount;
        words += wordCount;
        count -= 64 * wordCount;
    }
#endif
    fillWords(values, count, words, [=](double v) { return (v >= min) & (v <= max); });
}

/// The test applied to each value of the column.
template <class Column, class Test>
KufRulePredicate makeTest(const HbdAVariable& column, Test test)
{
    const auto* values = static_cast<const Column&>(column).getValues().data();
    return [values, test = std::move(test)](int first, int count, quint64* words) {
        fillWords(values + first, count, words, test);
    };
}

/// What a numeric rule asks: the value lies between two bounds, or (outside) below or above them.
/// NaN does neither.
struct Interval {
    double min = -INF;
    double max = INF;
    bool isMinOpen = false;
    bool isMaxOpen = false;
    bool isOutside = false;
};

Interval rangeOf(const KufSampleFilterRuleNumeric& rule)
{
    using Bound = KufSampleFilterRuleNumeric::IntervalOperator;
    return {rule.getLowerBound(), rule.getUpperBound(),
            rule.getLowerOperator() == Bound::ITV_LESS_THAN,
            rule.getUpperOperator() == Bound::ITV_LESS_THAN};
}

Interval intervalOf(const KufSampleFilterRuleNumeric& rule)
{
    using Operator = KufSampleFilterRuleNumeric::CompareOperator;
    if (rule.getMode() == KufSampleFilterRuleNumeric::Mode::IS_DEFINED)
        return Interval();
    if (rule.getMode() == KufSampleFilterRuleNumeric::Mode::RANGE)
        return rangeOf(rule);
    const double value = rule.getCompareValue();
    const double tolerance = rule.getTolerance();
    switch (rule.getCompareOperator().toEnum()) {
    case Operator::E_LESS_THAN:
        return {-INF, value, false, true};
    case Operator::E_LESS_OR_EQUAL_TO:
        return {-INF, value};
    case Operator::E_GREATER_THAN:
        return {value, INF, true};
    case Operator::E_GREATER_OR_EQUAL_TO:
        return {value, INF};
    case Operator::E_EQUAL:
        return {value - tolerance, value + tolerance};
    case Operator::E_NOT_EQUAL:
        break;
    }
    return {value - tolerance, value + tolerance, false, false, true};
}

/// The same reals between bounds that belong to the interval: the neighbours of open ends.
Interval closed(const Interval& in)
{
    if ((in.isMinOpen && in.min == INF) || (in.isMaxOpen && in.max == -INF))
        return {1.0, 0.0};
    return {in.isMinOpen ? std::nextafter(in.min, INF) : in.min,
            in.isMaxOpen ? std::nextafter(in.max, -INF) : in.max, false, false, in.isOutside};
}

KufRulePredicate makeRealTest(const HbdAVariable& column, const Interval& in)
{
    const double* values = static_cast<const HbdVariableReal&>(column).getValues().data();
    if (in.isOutside)
        return makeTest<HbdVariableReal>(column, [=](double v) {
            return ((v < in.min) | (v > in.max)) & (v != HbbGlobal::D_FFFF);
        });
    // Most intervals do not reach the undefined real: no need to look for it.
    if (in.max < HbbGlobal::D_FFFF || in.min > HbbGlobal::D_FFFF)
        return [=](int first, int count, quint64* words) {
            fillInterval(values + first, count, words, in.min, in.max);
        };
    return makeTest<HbdVariableReal>(
        column, [=](double v) { return (v >= in.min) & (v <= in.max) & (v != HbbGlobal::D_FFFF); });
}

KufRulePredicate makeReal32Test(const HbdAVariable& column, const Interval& in)
{
    if (in.isOutside)
        return makeTest<HbdVariableReal32>(
            column, [=](float v) { return (double(v) < in.min) | (double(v) > in.max); });
    return makeTest<HbdVariableReal32>(
        column, [=](float v) { return (double(v) >= in.min) & (double(v) <= in.max); });
}

/// The integers of an interval, the least one, which is undefined, left out. Exact beyond 2^53,
/// too.
struct IntegerInterval {
    qint64 min;
    qint64 max;
};

IntegerInterval integersIn(const Interval& in)
{
    constexpr double END = 9223372036854775808.0; // 2^63
    constexpr qint64 LEAST = std::numeric_limits<qint64>::min() + 1;
    constexpr qint64 GREATEST = std::numeric_limits<qint64>::max();
    if (!(in.min < END && in.max >= -END))
        return {1, 0};
    qint64 min = LEAST;
    if (in.min >= -END) {
        const double first = std::ceil(in.min);
        min = static_cast<qint64>(first) + (in.isMinOpen && first == in.min);
    }
    qint64 max = GREATEST;
    if (in.max < END) {
        const double last = std::floor(in.max);
        max = static_cast<qint64>(last);
        max -= in.isMaxOpen && last == in.max && max >= LEAST;
    }
    return {std::max(min, LEAST), max};
}

template <class Column>
KufRulePredicate makeIntegerTest(const HbdAVariable& column, const Interval& in)
{
    if (!in.isOutside) {
        const IntegerInterval range = integersIn(in);
        return makeTest<Column>(column,
                                [=](qint64 v) { return (v >= range.min) & (v <= range.max); });
    }
    const IntegerInterval low = integersIn({-INF, in.min, false, true});
    const IntegerInterval high = integersIn({in.max, INF, true});
    return makeTest<Column>(column, [=](qint64 v) {
        return ((v >= low.min) & (v <= low.max)) | ((v >= high.min) & (v <= high.max));
    });
}

/// Bytes are looked up.
template <class Column>
KufRulePredicate makeByteTest(const HbdAVariable& column, const std::function<bool(double)>& test)
{
    std::vector<quint8> passes(256);
    for (std::size_t i = 0; i < passes.size(); ++i)
        passes[i] = test(double(i));
    return makeTest<Column>(column, [passes](quint8 v) { return passes[v]; });
}

KufRulePredicate makeDefinedTest(const HbdAVariable& column)
{
    if (column.getType() == HbdEVarType::TEXT)
        return makeTest<HbdVariableText>(column, [](const QString& v) { return !v.isNull(); });
    if (column.getType() == HbdEVarType::CATEGORY)
        return makeTest<HbdVariableEnum>(
            column, [](quint16 v) { return v != HbdEnumCatalog::UNDEFINED_CODE; });
    return makeTest<HbdVariableColor>(
        column, [](quint32 v) { return !HbdVariableColor::isUndefinedValue(v); });
}

KufRulePredicate makeNumericTest(const KufSampleFilterRuleNumeric& rule, const HbdAVariable& column)
{
    const Interval in = intervalOf(rule);
    const auto passes = [real = closed(in)](double v) {
        return real.isOutside ? v < real.min || v > real.max : v >= real.min && v <= real.max;
    };
    switch (column.getType().toEnum()) {
    case HbdEVarType::E_REAL:
        return makeRealTest(column, closed(in));
    case HbdEVarType::E_REAL_32:
        return makeReal32Test(column, closed(in));
    case HbdEVarType::E_INTEGER:
        return makeIntegerTest<HbdVariableInteger>(column, in);
    case HbdEVarType::E_DATE:
        return makeIntegerTest<HbdVariableDate>(column, in);
    case HbdEVarType::E_SELECTION:
        return makeByteTest<HbdVariableSelection>(column, passes);
    case HbdEVarType::E_ALPHA_CHANNEL:
        return makeByteTest<HbdVariableAlpha>(column, passes);
    default:
        return makeDefinedTest(column);
    }
}

KufRulePredicate makeAlphaTest(const KufSampleFilterRuleAlpha& rule, const HbdAVariable& column)
{
    using Mode = KufSampleFilterRuleAlpha::Mode;
    const QString text = rule.getText();
    switch (rule.getMode().toEnum()) {
    case Mode::E_EQUAL_TO:
        return makeTest<HbdVariableText>(
            column, [text](const QString& v) { return !v.isNull() && v == text; });
    case Mode::E_NOT_EQUAL_TO:
        return makeTest<HbdVariableText>(
            column, [text](const QString& v) { return !v.isNull() && v != text; });
    case Mode::E_CONTAINS:
        break;
    }
    return makeTest<HbdVariableText>(
        column, [matcher = QStringMatcher(text), isEmpty = text.isEmpty()](const QString& v) {
            return !v.isNull() && (isEmpty || matcher.indexIn(v) >= 0);
        });
}

KufRulePredicate makeEnumTest(const KufSampleFilterRuleEnum& rule, const HbdAVariable& column)
{
    // Names become codes once; the samples are compared by code.
    const HbdEnumCatalog& catalog = static_cast<const HbdVariableEnum&>(column).getCatalog();
    QSet<quint16> codes;
    for (const QString& name : rule.getSelectedList())
        codes.insert(catalog.getCode(name));
    codes.remove(HbdEnumCatalog::UNDEFINED_CODE);
    if (codes.isEmpty())
        return makeTest<HbdVariableEnum>(column, [](quint16) { return false; });
    const quint16 min = *std::min_element(codes.begin(), codes.end());
    const quint16 max = *std::max_element(codes.begin(), codes.end());
    if (max - min + 1 == codes.size())
        return makeTest<HbdVariableEnum>(column,
                                         [min, max](quint16 v) { return (v >= min) & (v <= max); });
    if (codes.size() <= 4) { // a few are compared one by one, by vector instructions
        const QList<quint16> few = codes.values();
        const quint16 a = few.first();
        const quint16 b = few.value(1, a);
        const quint16 c = few.value(2, a);
        const quint16 d = few.value(3, a);
        return makeTest<HbdVariableEnum>(
            column, [=](quint16 v) { return (v == a) | (v == b) | (v == c) | (v == d); });
    }
    std::vector<quint8> isSelected(0x10000);
    for (const quint16 code : codes)
        isSelected[code] = 1;
    return makeTest<HbdVariableEnum>(column, [isSelected](quint16 v) { return isSelected[v]; });
}
} // namespace

KufRulePredicate kufMakeRulePredicate(const KufISampleFilterRule& rule, const HbdAVariable& column)
{
    switch (rule.getType().toEnum()) {
    case KufFilterRuleType::E_NUMERIC:
        return makeNumericTest(static_cast<const KufSampleFilterRuleNumeric&>(rule), column);
    case KufFilterRuleType::E_ALPHA:
        return makeAlphaTest(static_cast<const KufSampleFilterRuleAlpha&>(rule), column);
    case KufFilterRuleType::E_ENUM:
        return makeEnumTest(static_cast<const KufSampleFilterRuleEnum&>(rule), column);
    case KufFilterRuleType::E_SELECTION:
        break;
    }
    const quint8 wanted =
        static_cast<const KufSampleFilterRuleSelection&>(rule).getInvertSelection() ? 0 : 1;
    return makeTest<HbdVariableSelection>(column, [wanted](quint8 v) { return v == wanted; });
}
