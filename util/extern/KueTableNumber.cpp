#include "KueTableNumber.h"

#include <basic/base/HbbGlobal.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace
{
using Kind = KueTableNumber::Kind;
using Digits = KueTableNumber::Digits;

constexpr int MAX_TEXT = 1100; // longer than the longest exact decimal form of a double

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

const char* skipDigits(const char* at, const char* end)
{
    while (at != end && isDigit(*at))
        ++at;
    return at;
}

/// The parts of a text that has the form of a number.
struct Form {
    bool isNumber = false;
    bool isNegative = false;
    const char* integer = nullptr; ///< first digit before the decimal sign
    const char* integerEnd = nullptr;
    const char* fraction = nullptr; ///< first digit behind it; null without a decimal sign
    const char* fractionEnd = nullptr;
    const char* exponent = nullptr; ///< at 'e'; null without one
};

Form findForm(const char* at, const char* end, char decimal)
{
    Form form;
    if (at != end && (*at == '-' || *at == '+'))
        form.isNegative = *at++ == '-';
    form.integer = at;
    form.integerEnd = at = skipDigits(at, end);
    if (at != end && *at == decimal) {
        form.fraction = ++at;
        form.fractionEnd = at = skipDigits(at, end);
    }
    const bool hasDigits =
        form.integer != form.integerEnd || (form.fraction && form.fraction != form.fractionEnd);
    if (at != end && (*at == 'e' || *at == 'E')) {
        form.exponent = at++;
        if (at != end && (*at == '-' || *at == '+'))
            ++at;
        const char* const digits = at;
        at = skipDigits(at, end);
        if (digits == at)
            return form;
    }
    form.isNumber = hasDigits && at == end;
    return form;
}

/// The significant digits of a text, without sign, point and zeros in front.
int collectDigits(const Form& form, char* out)
{
    char* const begin = out;
    const auto add = [&](const char* from, const char* to) {
        for (; from != to; ++from) {
            if (out != begin || *from != '0')
                *out++ = *from;
        }
    };
    add(form.integer, form.integerEnd);
    if (form.fraction)
        add(form.fraction, form.fractionEnd);
    return static_cast<int>(out - begin);
}

/// Written with so many digits, the double gives these.
bool isReproduced(double value, const char* digits, int count)
{
    char buffer[MAX_TEXT + 32];
    const char* const end = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                          std::chars_format::scientific, count - 1)
                                .ptr;
    const char* at = buffer;
    for (int i = 0; i < count; ++i, ++at) {
        if (i == 1)
            ++at; // the point
        if (at >= end || *at != digits[i])
            return false;
    }
    return true;
}

Digits judgeDigits(const Form& form, double value, int significant)
{
    if (significant <= KueTableNumber::SAFE_DIGITS || value == 0)
        return Digits::KEPT;
    char digits[MAX_TEXT];
    const int count = collectDigits(form, digits);
    if (isReproduced(value, digits, count))
        return Digits::KEPT;
    int stripped = count;
    while (stripped > 0 && digits[stripped - 1] == '0')
        --stripped;
    const bool isKept = stripped <= KueTableNumber::SAFE_DIGITS ||
                        (stripped < count && isReproduced(value, digits, stripped));
    return isKept ? Digits::KEPT_SHORT : Digits::LOST;
}

/// False when the text is too long, too large, or vanishes though it has digits.
bool parseReal(const char* begin, const char* end, char decimal, bool isZero, double& value)
{
    if (*begin == '+')
        ++begin;
    char buffer[MAX_TEXT];
    if (decimal != '.') {
        std::replace_copy(begin, end, buffer, decimal, '.');
        end = buffer + (end - begin);
        begin = buffer;
    }
    const std::from_chars_result result = std::from_chars(begin, end, value);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value) &&
           (value != 0 || isZero) && !HbbGlobal::isUndefined(value);
}

bool isAllZeros(const char* begin, const char* end)
{
    return std::all_of(begin, end, [](char c) { return c == '0'; });
}

bool parseInteger(const Form& form, qint64& value)
{
    const char* const begin = form.isNegative ? form.integer - 1 : form.integer;
    const std::from_chars_result result = std::from_chars(begin, form.integerEnd, value);
    return result.ec == std::errc() && !HbbGlobal::isUndefined(value);
}
} // namespace

KueTableNumber KueTableNumber::parse(const char* begin, const char* end, Style style)
{
    KueTableNumber number;
    if (begin == end || end - begin >= MAX_TEXT)
        return number;
    const Form form = findForm(begin, end, style.decimal);
    if (!form.isNumber)
        return number;
    number.integerDigits = static_cast<int>(form.integerEnd - form.integer);
    if (number.integerDigits > 1 && *form.integer == '0' && !style.leadingZeros)
        return number;
    if (form.fraction)
        number.decimals = static_cast<int>(form.fractionEnd - form.fraction);

    const bool isZero = isAllZeros(form.integer, form.integerEnd) &&
                        (!form.fraction || isAllZeros(form.fraction, form.fractionEnd));
    number.hasExponent = form.exponent != nullptr;
    if (!parseReal(begin, end, style.decimal, isZero, number.real))
        return number;

    char digits[MAX_TEXT];
    number.significant = collectDigits(form, digits);
    number.digits = judgeDigits(form, number.real, number.significant);
    // A minus before zero is kept by a real alone.
    const bool isInteger = !form.fraction && !form.exponent && !(isZero && form.isNegative);
    if (!isInteger)
        number.kind = Kind::REAL;
    else
        number.kind = parseInteger(form, number.integer) ? Kind::INTEGER : Kind::LARGE;
    return number;
}
