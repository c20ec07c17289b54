#pragma once

#include <QtCore/QtGlobal>

/// A number as a text spells it: its value, and what is needed to write its digits again.
struct KueTableNumber {
    enum class Kind {
        NONE,    ///< no number, or one outside the range of both types
        INTEGER, ///< digits only, within 64 bits
        LARGE,   ///< digits only, beyond them
        REAL
    };
    /// How the double keeps the digits of the text.
    enum class Digits {
        KEPT,       ///< written with as many digits, it gives the text's digits
        KEPT_SHORT, ///< the same, but for zeros at the end of the text
        LOST        ///< the text has digits that no double holds
    };

    Kind kind = Kind::NONE;
    Digits digits = Digits::KEPT;
    qint64 integer = 0; ///< for INTEGER
    double real = 0;    ///< the nearest double, for both
    int integerDigits = 0;
    int decimals = 0;    ///< digits behind the decimal sign
    int significant = 0; ///< digits without the zeros in front
    bool hasExponent = false;

    /// How a number may look in a file.
    struct Style {
        char decimal = '.';
        bool leadingZeros = false; ///< "001" is a number, too
    };

    /// Reads the whole text; it has no white space around it. A real that overflows, vanishes, or
    /// means "undefined" to the system is no number.
    static KueTableNumber parse(const char* begin, const char* end, Style style);

    /// Every text of so many significant digits comes back from a double.
    static constexpr int SAFE_DIGITS = 15;

    /// The powers of ten that a double holds exactly.
    static constexpr int EXACT_POWERS = 22;
    static constexpr double POWERS[EXACT_POWERS + 1] = {
        1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
};
