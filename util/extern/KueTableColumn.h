#pragma once

#include "KueTableLabels.h"
#include "KueTableMissing.h"
#include "KueTableNumber.h"
#include "KueTableTokenizer.h"

#include <util/extern/KueTableOptions.h>

#include <basic/data/HbdAVariable.h>

#include <QtCore/QString>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

class KueTableSource;

/// What all columns of a file have in common.
struct KueTableRules {
    explicit KueTableRules(const KueTableMissing& missingTexts)
        : missing(missingTexts)
    {
    }

    KueTableNumber::Style style;
    char unquotedDecimal = '.'; ///< the decimal sign outside quotes; 0 when it is the separator
    double undefinedAbove = std::numeric_limits<double>::infinity(); ///< numbers above: undefined
    const KueTableMissing& missing;                                  ///< borrowed
    int maxCategories = 0;
    double maxCategoryShare = 0;
    const KueTableSource* source = nullptr; ///< borrowed; decodes texts
};

/// One column while a file is read. It begins as the narrowest type and widens: integer to real and
/// category to text at once, from the values it has; a number to text by asking to be read again,
/// for the texts of its numbers are gone. Cells are stored by rank, and storing one again changes
/// nothing: the reader may begin a row anew.
class KueTableColumn
{
public:
    using Cell = KueTableTokenizer::Cell;

    /// What the user or the form of the file asks for.
    enum class Request { ANY, NUMBER, CATEGORY, TEXT };
    enum class Kind {
        INTEGER,
        REAL,
        CATEGORY,
        TEXT,
        REJECTED ///< no numbers after all: to be read again as texts
    };
    enum class Outcome {
        STORED,
        WIDENED,    ///< became REJECTED by this cell
        UNREADABLE, ///< NUMBER was requested
        TOO_MANY    ///< CATEGORY was requested
    };

    KueTableColumn(Request request, bool looksLikeText);

    Kind getKind() const { return m_kind; }
    bool isNumeric() const { return m_kind == Kind::INTEGER || m_kind == Kind::REAL; }

    /// Takes cells: neither REJECTED nor closed.
    bool isOpen() const { return m_isOpen; }

    /// Digits that a real cannot hold do not make the column a text.
    void setRounding(bool isRounding) { m_isRounding = isRounding; }

    /// Digits that no real holds were rounded, or made the column a text.
    bool hasLostDigits() const { return m_hasLostDigits; }
    /// Whole numbers beyond 64 bits, which are reals only beside others that have decimals.
    bool hasLargeIntegers() const { return m_hasLargeIntegers; }
    /// It held numbers before it was REJECTED.
    bool hasNumbers() const { return m_hasNumbers; }

    /// The column is read anew, as texts if it was REJECTED.
    void restart();

    /// Makes room for ranks below `count`; `expected` is a guess of the final count.
    void resize(std::size_t count, std::size_t expected);

    /// The fast way, for a numeric column: if the bytes at `at` are a plain number that a byte of
    /// `tokenizer.isStop` ends, stores it and returns that end, otherwise null.
    const char* storeNumber(const char* at, std::size_t rank, const KueTableTokenizer& tokenizer,
                            const KueTableRules& rules);

    /// The general way, for any cell and kind. An open column.
    Outcome store(const Cell& cell, std::size_t rank, const KueTableRules& rules);

    /// The encoding changed after the cells below `count` were stored: they were Latin-1.
    void decodeAgain(std::size_t count);

    /// All cells are stored. False when only now it shows that they are no numbers: the column is
    /// REJECTED. Categories become texts where there are too many for their rows.
    bool close(std::size_t count, const KueTableRules& rules);

    /// The column of the table; the builder is empty then.
    std::unique_ptr<HbdAVariable> build(const QString& name, const HbdEVarRole& role,
                                        const KueTableRules& rules);

private:
    Outcome storeParsed(const KueTableNumber& number, std::size_t rank);
    Outcome storeText(std::string_view text, std::size_t rank, const KueTableRules& rules);
    Outcome reject();
    bool widenToReal();
    void widenToText(std::size_t count, const KueTableRules& rules);
    void noteDigits(int integerDigits, int decimals);
    void noteDigits(const KueTableNumber& number);
    void setFormat(HbdVariableDetails& details) const;

    Request m_request;
    bool m_isRounding;
    bool m_isOpen = true;
    Kind m_kind = Kind::INTEGER;

    std::vector<qint64> m_integers; ///< the values, in that of the kind
    std::vector<double> m_reals;
    std::vector<quint16> m_codes;
    std::vector<QString> m_texts;
    KueTableLabels m_labels;

    // What the texts of the numbers looked like.
    int m_maxIntegerDigits = 0;
    int m_maxDecimals = 0;
    int m_minDecimals = std::numeric_limits<int>::max();
    int m_maxSignificant = 0; ///< of numbers with an exponent
    int m_minSignificant = std::numeric_limits<int>::max();
    bool m_hasExponent = false;
    bool m_hasPlain = false;  ///< a number without exponent
    bool m_keepsZeros = true; ///< long numbers give their texts with all their digits
    bool m_hasLostDigits = false;
    bool m_hasLargeIntegers = false;
    bool m_hasReals = false; ///< a number that has not the form of an integer
    bool m_hasNumbers = false;
    bool m_hasWords = false; ///< cells like "na": missing among numbers, texts among texts
    std::string m_buffer;
};

inline const char* KueTableColumn::storeNumber(const char* at, std::size_t rank,
                                               const KueTableTokenizer& tokenizer,
                                               const KueTableRules& rules)
{
    const bool isNegative = *at == '-';
    at += isNegative ? 1 : 0;

    const char* const integer = at;
    quint64 mantissa = 0;
    for (unsigned digit; (digit = static_cast<unsigned char>(*at) - '0') <= 9; ++at)
        mantissa = mantissa * 10 + digit;
    const int integerDigits = static_cast<int>(at - integer);
    int decimals = 0;
    const bool hasDecimal = *at == rules.unquotedDecimal;
    if (hasDecimal) {
        const char* const fraction = ++at;
        for (unsigned digit; (digit = static_cast<unsigned char>(*at) - '0') <= 9; ++at)
            mantissa = mantissa * 10 + digit;
        decimals = static_cast<int>(at - fraction);
    }
    // Anything unusual goes the general way: zeros in front, many digits, an exponent, "-0".
    if (!tokenizer.isCellEnd(at) || integerDigits == 0 ||
        integerDigits + decimals > KueTableNumber::SAFE_DIGITS ||
        (integerDigits > 1 && *integer == '0'))
        return nullptr;

    const double magnitude = static_cast<double>(mantissa) / KueTableNumber::POWERS[decimals];
    const double value = isNegative ? -magnitude : magnitude;
    if (rules.missing.hasNumbers() && rules.missing.hasNumber(value))
        return nullptr;

    if (m_kind == Kind::INTEGER) {
        if ((isNegative && mantissa == 0) || (hasDecimal && !widenToReal()))
            return nullptr;
    }
    if (m_kind == Kind::INTEGER) {
        const qint64 whole = static_cast<qint64>(mantissa);
        m_integers[rank] = isNegative ? -whole : whole;
    } else {
        m_reals[rank] = value;
        m_hasReals = m_hasReals || hasDecimal;
    }
    noteDigits(integerDigits, decimals);
    return at;
}

inline void KueTableColumn::noteDigits(int integerDigits, int decimals)
{
    m_hasNumbers = true;
    m_hasPlain = true;
    m_maxIntegerDigits = std::max(m_maxIntegerDigits, integerDigits);
    m_maxDecimals = std::max(m_maxDecimals, decimals);
    m_minDecimals = std::min(m_minDecimals, decimals);
}
