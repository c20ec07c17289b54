#include "KueTableColumn.h"

#include "KueTableSource.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>

namespace
{
using Digits = KueTableNumber::Digits;

constexpr quint16 UNDEFINED_CODE = HbdEnumCatalog::UNDEFINED_CODE;

template <class Value>
void resizeTo(std::vector<Value>& values, std::size_t count, std::size_t expected)
{
    // Room that is not used yet takes no memory; growing twofold would.
    if (values.capacity() < count)
        values.reserve(std::max(expected, count + count / 8));
    values.resize(count);
}

template <class Variable, class Value>
std::unique_ptr<HbdAVariable> makeVariable(const HbdVariableDetails& details,
                                           std::vector<Value>& values)
{
    if (values.capacity() > values.size() + values.size() / 4)
        values.shrink_to_fit();
    auto variable = std::make_unique<Variable>(details);
    variable->setValues(std::move(values));
    return variable;
}

QString decode(std::string_view text, const KueTableRules& rules)
{
    return text.empty() ? QString(QLatin1String(""))
                        : rules.source->decode(text.data(), text.size());
}
} // namespace

KueTableColumn::KueTableColumn(Request request, bool looksLikeText)
    : m_request(request)
    , m_isRounding(request == Request::NUMBER)
{
    if (request == Request::NUMBER)
        m_kind = Kind::REAL;
    else if (request == Request::TEXT)
        m_kind = Kind::TEXT;
    else if (request == Request::CATEGORY || looksLikeText)
        m_kind = Kind::CATEGORY;
}

void KueTableColumn::restart()
{
    if (m_kind == Kind::REJECTED) {
        m_kind = Kind::CATEGORY;
        m_isOpen = true;
    }
}

void KueTableColumn::resize(std::size_t count, std::size_t expected)
{
    switch (m_kind) {
    case Kind::INTEGER:
        return resizeTo(m_integers, count, expected);
    case Kind::REAL:
        return resizeTo(m_reals, count, expected);
    case Kind::CATEGORY:
        return resizeTo(m_codes, count, expected);
    case Kind::TEXT:
        return resizeTo(m_texts, count, expected);
    case Kind::REJECTED:
        return;
    }
}

KueTableColumn::Outcome KueTableColumn::store(const Cell& cell, std::size_t rank,
                                              const KueTableRules& rules)
{
    const std::string_view text = KueTableTokenizer::getText(cell, m_buffer);
    if (!isNumeric())
        return storeText(text, rank, rules);

    bool isUndefined = rules.missing.containsAnyCase(text);
    if (isUndefined) {
        m_hasWords = m_hasWords || !rules.missing.contains(text);
    } else {
        const KueTableNumber number =
            KueTableNumber::parse(text.data(), text.data() + text.size(), rules.style);
        isUndefined = number.real > rules.undefinedAbove;
        if (!isUndefined)
            return storeParsed(number, rank);
        m_hasNumbers = true;
    }
    if (m_kind == Kind::INTEGER)
        m_integers[rank] = HbbGlobal::I_FFFF;
    else
        m_reals[rank] = HbbGlobal::D_FFFF;
    return Outcome::STORED;
}

KueTableColumn::Outcome KueTableColumn::storeParsed(const KueTableNumber& number, std::size_t rank)
{
    if (number.kind == KueTableNumber::Kind::NONE)
        return m_request == Request::NUMBER ? Outcome::UNREADABLE : reject();
    const bool isInteger = number.kind == KueTableNumber::Kind::INTEGER;
    if (!isInteger && m_kind == Kind::INTEGER && !widenToReal())
        return reject();
    if (m_kind == Kind::INTEGER) {
        m_integers[rank] = number.integer;
    } else {
        if (number.digits == Digits::LOST) {
            m_hasLostDigits = true;
            if (!m_isRounding)
                return reject();
        }
        m_reals[rank] = number.real;
        m_hasReals = m_hasReals || number.kind == KueTableNumber::Kind::REAL;
        m_hasLargeIntegers = m_hasLargeIntegers || number.kind == KueTableNumber::Kind::LARGE;
    }
    noteDigits(number);
    return Outcome::STORED;
}

KueTableColumn::Outcome KueTableColumn::storeText(std::string_view text, std::size_t rank,
                                                  const KueTableRules& rules)
{
    const bool isUndefined = rules.missing.contains(text);
    if (m_kind == Kind::CATEGORY) {
        const bool isAsked = m_request == Request::CATEGORY;
        const int limit = isAsked ? KueTableLabels::MAX_COUNT : rules.maxCategories;
        const int code =
            isUndefined ? int(UNDEFINED_CODE) : m_labels.findOrAdd(text.data(), text.size(), limit);
        if (code != KueTableLabels::NONE) {
            m_codes[rank] = static_cast<quint16>(code);
            return Outcome::STORED;
        }
        if (isAsked)
            return Outcome::TOO_MANY;
        widenToText(m_codes.size(), rules);
    }
    m_texts[rank] = isUndefined ? QString() : decode(text, rules);
    return Outcome::STORED;
}

KueTableColumn::Outcome KueTableColumn::reject()
{
    m_kind = Kind::REJECTED;
    m_isOpen = false;
    m_integers = {};
    m_reals = {};
    return Outcome::WIDENED;
}

bool KueTableColumn::widenToReal()
{
    // Whole numbers beyond 2^53 are not all reals.
    for (const qint64 value : m_integers) {
        constexpr qint64 LARGE = qint64(1) << 62;
        const bool isExact = HbbGlobal::isUndefined(value) ||
                             (value > -LARGE && value < LARGE &&
                              static_cast<qint64>(static_cast<double>(value)) == value);
        if (!isExact) {
            m_hasLostDigits = true;
            if (!m_isRounding)
                return false;
        }
    }
    m_reals.reserve(m_integers.capacity());
    m_reals.resize(m_integers.size());
    std::transform(m_integers.cbegin(), m_integers.cend(), m_reals.begin(), [](qint64 value) {
        return HbbGlobal::isUndefined(value) ? HbbGlobal::D_FFFF : static_cast<double>(value);
    });
    m_integers = {};
    m_kind = Kind::REAL;
    return true;
}

void KueTableColumn::widenToText(std::size_t count, const KueTableRules& rules)
{
    std::vector<QString> labels;
    for (int code = 0; code < m_labels.getCount(); ++code)
        labels.push_back(decode(m_labels.getLabel(code), rules));
    m_texts.reserve(m_codes.capacity());
    m_texts.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (m_codes[i] < labels.size())
            m_texts[i] = labels[m_codes[i]];
    }
    m_codes = {};
    m_labels = KueTableLabels();
    m_kind = Kind::TEXT;
}

void KueTableColumn::noteDigits(const KueTableNumber& number)
{
    if (number.digits == Digits::KEPT_SHORT)
        m_keepsZeros = false;
    if (!number.hasExponent)
        return noteDigits(number.integerDigits, number.decimals);
    m_hasNumbers = true;
    m_hasExponent = true;
    const int significant =
        std::max(number.significant, number.real == 0 ? number.decimals + 1 : 1);
    m_maxSignificant = std::max(m_maxSignificant, significant);
    if (number.real != 0)
        m_minSignificant = std::min(m_minSignificant, significant);
}

void KueTableColumn::decodeAgain(std::size_t count)
{
    if (m_kind != Kind::TEXT)
        return;
    const auto isPlain = [](QChar c) { return c.unicode() < 0x80; };
    for (std::size_t i = 0; i < std::min(count, m_texts.size()); ++i) {
        QString& text = m_texts[i];
        if (!std::all_of(text.cbegin(), text.cend(), isPlain))
            text = QString::fromLatin1(text.toUtf8());
    }
}

bool KueTableColumn::close(std::size_t count, const KueTableRules& rules)
{
    resize(count, count);
    if (isNumeric() && m_request != Request::NUMBER) {
        const bool isWords = !m_hasNumbers && m_hasWords;
        const bool isLarge = m_hasLargeIntegers && !m_hasReals && !m_isRounding;
        if (isWords || isLarge) {
            reject();
            return false;
        }
    }
    if (isNumeric() && m_request != Request::NUMBER && !m_hasNumbers) {
        m_integers = {};
        m_reals = {};
        m_kind = Kind::TEXT;
        m_texts.resize(count);
    }
    if (m_kind == Kind::CATEGORY && m_request != Request::CATEGORY) {
        const auto undefined = std::count(m_codes.cbegin(), m_codes.cend(), UNDEFINED_CODE);
        const double defined = static_cast<double>(count) - static_cast<double>(undefined);
        if (m_labels.getCount() == 0 || m_labels.getCount() > rules.maxCategoryShare * defined)
            widenToText(count, rules);
    }
    m_isOpen = false;
    return true;
}

void KueTableColumn::setFormat(HbdVariableDetails& details) const
{
    details.automaticFormat = false;
    const int plain = m_hasPlain ? m_maxIntegerDigits + m_maxDecimals : 0;
    const bool isSafe = std::max(plain, m_maxSignificant) <= KueTableNumber::SAFE_DIGITS;
    if (m_hasExponent) {
        const bool isUniform = !m_hasPlain && m_minSignificant == m_maxSignificant && m_keepsZeros;
        details.format = isSafe || isUniform ? HbbEFormat::SCIENTIFIC : HbbEFormat::SHORTEST;
        details.precision = std::max(plain, m_maxSignificant) - 1;
    } else {
        const bool isUniform = m_minDecimals >= m_maxDecimals && m_keepsZeros;
        details.format = isSafe || isUniform ? HbbEFormat::DECIMAL : HbbEFormat::SHORTEST;
        details.precision = m_maxDecimals;
    }
    if (m_hasLostDigits || details.precision > HbbStringFormat::MAX_PRECISION)
        details.format = HbbEFormat::SHORTEST;
    if (details.format == HbbEFormat::SHORTEST)
        details.precision = 17; // what a view falls back to: every digit a double may need
}

std::unique_ptr<HbdAVariable> KueTableColumn::build(const QString& name, const HbdEVarRole& role,
                                                    const KueTableRules& rules)
{
    HbdVariableDetails details(name, HbdEVarType::REAL, role);
    switch (m_kind) {
    case Kind::INTEGER:
        if (role == HbdEVarRole::NONE || !widenToReal()) {
            details.format = HbbEFormat::INTEGER;
            details.precision = 0;
            details.automaticFormat = false;
            return makeVariable<HbdVariableInteger>(details, m_integers);
        }
        [[fallthrough]]; // coordinates are reals
    case Kind::REAL:
        setFormat(details);
        return makeVariable<HbdVariableReal>(details, m_reals);
    case Kind::CATEGORY: {
        HbdEnumCatalog catalog;
        std::vector<quint16> codes;
        for (int code = 0; code < m_labels.getCount(); ++code)
            codes.push_back(catalog.findOrAdd(decode(m_labels.getLabel(code), rules)));
        for (quint16& code : m_codes) {
            if (code != UNDEFINED_CODE)
                code = codes[code]; // another one where two spellings decode to one text
        }
        auto variable = makeVariable<HbdVariableEnum>(details, m_codes);
        static_cast<HbdVariableEnum&>(*variable).setCatalog(catalog);
        return variable;
    }
    case Kind::TEXT:
    case Kind::REJECTED:
        break;
    }
    return makeVariable<HbdVariableText>(details, m_texts);
}
