#pragma once

#include <QtCore/QStringList>

#include <string>
#include <string_view>
#include <vector>

/// The texts that mean "undefined", as the bytes of the file spell them.
class KueTableMissing
{
public:
    explicit KueTableMissing(const QStringList& texts);

    /// With the case, as for texts.
    bool contains(std::string_view text) const { return mayHold(text.size()) && find(text, false); }
    /// Without it (ASCII letters alone), as for numbers.
    bool containsAnyCase(std::string_view text) const
    {
        return mayHold(text.size()) && find(text, true);
    }

    /// One of the texts spells this number, so that a number that was read must be compared, too.
    bool hasNumbers() const { return !m_numbers.empty(); }
    bool hasNumber(double value) const;

private:
    bool mayHold(std::size_t size) const { return (m_sizes >> std::min(size, LAST_SIZE) & 1) != 0; }
    bool find(std::string_view text, bool anyCase) const;

    static constexpr std::size_t LAST_SIZE = 63; ///< longer texts share a bit
    quint64 m_sizes = 0;
    std::vector<std::string> m_texts;
    std::vector<double> m_numbers;
};
