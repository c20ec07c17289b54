#include "KueTableMissing.h"

#include "KueTableNumber.h"

#include <algorithm>

namespace
{
char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
} // namespace

KueTableMissing::KueTableMissing(const QStringList& texts)
{
    for (const QString& given : texts) {
        const QString text = given.trimmed();
        // As either encoding spells it: the file's is known at its end only.
        for (const QByteArray& bytes : {text.toUtf8(), text.toLatin1()}) {
            m_texts.emplace_back(bytes.constData(), static_cast<std::size_t>(bytes.size()));
            m_sizes |= quint64(1) << std::min(m_texts.back().size(), LAST_SIZE);
        }
        for (const char decimal : {'.', ','}) {
            const QByteArray bytes = text.toLatin1();
            const KueTableNumber number =
                KueTableNumber::parse(bytes.cbegin(), bytes.cend(), {decimal, true});
            if (number.kind != KueTableNumber::Kind::NONE)
                m_numbers.push_back(number.real);
        }
    }
}

bool KueTableMissing::hasNumber(double value) const
{
    return std::find(m_numbers.cbegin(), m_numbers.cend(), value) != m_numbers.cend();
}

bool KueTableMissing::find(std::string_view text, bool anyCase) const
{
    return std::any_of(m_texts.cbegin(), m_texts.cend(), [&](const std::string& missing) {
        return std::equal(
            text.begin(), text.end(), missing.begin(), missing.end(),
            [&](char a, char b) { return a == b || (anyCase && lower(a) == lower(b)); });
    });
}
