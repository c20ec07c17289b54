#include "HbuUnitKernel.h"

#include <basic/base/HbbGlobal.h>

#include <cmath>

// Written by hand for processors with AVX2, which a build for any x86-64 looks for at run time: a
// compiler would branch around the arithmetic of an undefined value, and divide, and both take
// longer than memory does. No function is called with a wide register, so that none hands one to
// code that does not know of it.
#if defined(__x86_64__) && defined(__GNUC__)
#define HBU_HAS_WIDE
#include <immintrin.h>
#define HBU_WIDE __attribute__((target("avx2,fma")))
#define HBU_WIDE_INLINE __attribute__((target("avx2,fma"), always_inline)) inline
#endif

namespace
{
// The operations on one value. They come by value to the loops, for a reference might refer to one
// of the values. A NaN needs no test: arithmetic hands it on.

struct Multiply {
    double factor;
    double operator()(double value) const { return value * factor; }
};

struct MultiplyAdd {
    double factor;
    double shift;
    double operator()(double value) const { return value * factor + shift; }
};

struct Scale {
    double numerator;
    double denominator;
    double operator()(double value) const { return value * numerator / denominator; }
};

struct ScaleAdd {
    double numerator;
    double offset;
    double denominator;
    double operator()(double value) const { return (value * numerator + offset) / denominator; }
};

template <class Operation>
void convertNarrow(double* values, qint64 count, const Operation operation)
{
    for (qint64 i = 0; i < count; ++i) {
        if (values[i] != HbbGlobal::D_FFFF)
            values[i] = operation(values[i]);
    }
}

#ifdef HBU_HAS_WIDE
constexpr int WIDTH = 4;

/// What to multiply by in place of a division: 1 / divisor as the sum of two doubles of the same
/// sign, so that neither an infinity nor a negative zero suffers. The quotient is that of a
/// division to the last bit: to differ, it would have to lie within 2^-105 of the middle between
/// two doubles, and quotients by a divisor of up to 50 bits do not come so near.
struct Reciprocal {
    double high;
    double low;

    explicit Reciprocal(double divisor)
        : high(1. / divisor)
    {
        if (std::fma(-high, divisor, 1.) < 0.)
            high = std::nextafter(high, 0.);
        low = std::fma(-high, divisor, 1.) / divisor;
    }

    /// Not for a power of two, and not at the ends of the range of numbers.
    bool isUsable() const { return std::isnormal(high) && std::isnormal(low); }

    HBU_WIDE_INLINE __m256d quotient(__m256d dividend) const
    {
        return _mm256_fmadd_pd(dividend, _mm256_set1_pd(high),
                               _mm256_mul_pd(dividend, _mm256_set1_pd(low)));
    }
};

struct WideMultiply {
    Multiply single;

    bool isUsable() const { return true; }
    HBU_WIDE_INLINE __m256d operator()(__m256d value) const
    {
        return _mm256_mul_pd(value, _mm256_set1_pd(single.factor));
    }
};

struct WideMultiplyAdd {
    MultiplyAdd single;

    bool isUsable() const { return true; }
    HBU_WIDE_INLINE __m256d operator()(__m256d value) const
    {
        return _mm256_add_pd(_mm256_mul_pd(value, _mm256_set1_pd(single.factor)),
                             _mm256_set1_pd(single.shift));
    }
};

struct WideScale {
    Scale single;
    Reciprocal reciprocal{single.denominator};

    bool isUsable() const { return reciprocal.isUsable(); }
    HBU_WIDE_INLINE __m256d operator()(__m256d value) const
    {
        return reciprocal.quotient(_mm256_mul_pd(value, _mm256_set1_pd(single.numerator)));
    }
};

struct WideScaleAdd {
    ScaleAdd single;
    Reciprocal reciprocal{single.denominator};

    bool isUsable() const { return reciprocal.isUsable(); }
    HBU_WIDE_INLINE __m256d operator()(__m256d value) const
    {
        return reciprocal.quotient(_mm256_add_pd(
            _mm256_mul_pd(value, _mm256_set1_pd(single.numerator)), _mm256_set1_pd(single.offset)));
    }
};

template <class Operation>
HBU_WIDE qint64 convertWide(double* values, qint64 count, const Operation operation)
{
    const __m256d undefined = _mm256_set1_pd(HbbGlobal::D_FFFF);
    qint64 i = 0;
    for (; i + WIDTH <= count; i += WIDTH) {
        const __m256d value = _mm256_loadu_pd(values + i);
        const __m256d isUndefined = _mm256_cmp_pd(value, undefined, _CMP_EQ_OQ);
        _mm256_storeu_pd(values + i, _mm256_blendv_pd(operation(value), value, isUndefined));
    }
    return i;
}

template <class Wide, class Single>
void convert(double* values, qint64 count, const Single single)
{
    static const bool hasWide = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    qint64 converted = 0;
    if (hasWide && count >= WIDTH) {
        const Wide wide{single};
        if (wide.isUsable())
            converted = convertWide(values, count, wide);
    }
    convertNarrow(values + converted, count - converted, single);
}
#define HBU_CONVERT(Operation) convert<Wide##Operation, Operation>
#else
#define HBU_CONVERT(Operation) convertNarrow<Operation>
#endif
} // namespace

void HbuUnitKernel::multiply(double* values, qint64 count, double factor)
{
    HBU_CONVERT(Multiply)(values, count, {factor});
}

void HbuUnitKernel::multiplyAdd(double* values, qint64 count, double factor, double shift)
{
    HBU_CONVERT(MultiplyAdd)(values, count, {factor, shift});
}

void HbuUnitKernel::scale(double* values, qint64 count, double numerator, double denominator)
{
    HBU_CONVERT(Scale)(values, count, {numerator, denominator});
}

void HbuUnitKernel::scaleAdd(double* values, qint64 count, double numerator, double offset,
                             double denominator)
{
    HBU_CONVERT(ScaleAdd)(values, count, {numerator, offset, denominator});
}
