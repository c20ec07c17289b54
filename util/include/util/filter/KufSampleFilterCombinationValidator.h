#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

class KufISampleFilter;

/// Checks the combination of a filter and brings it into its normal form: the words, separated by
/// single blanks, operators in lower case, "R" in upper case and its number without leading zeros.
/// An empty combination gives the default one.
///
/// The words are those that the regular expression "\s+|\b|(?=[()])" splits the text into: rule
/// names, "and", "or", "not", "(" and ")", in any case; "R1and" is one word, which is none of
/// these. Not binds stronger than and, and stronger than or; equal operators associate to the left.
///
/// Nothing is repaired. Of a malformed text the words before the error are given, which may be
/// another condition than was meant: ask isValid().
class KELVANE_UTIL_EXPORT KufSampleFilterCombinationValidator
{
public:
    /// The filter is borrowed and may be null, which is a filter without rules.
    explicit KufSampleFilterCombinationValidator(const KufISampleFilter* filter);

    bool isValid() const { return m_error.isEmpty(); }

    /// What is wrong, and at which character (counted from 1); empty when nothing is.
    const QString& getError() const { return m_error; }

    /// The character that the error is at, counted from 0; the length of the text when something is
    /// missing at its end; -1 when the text is valid.
    int getErrorPosition() const { return m_errorPosition; }

    /// The accepted words, joined by single blanks.
    QString getCombination() const { return _checkCombination(); }
    QString _checkCombination() const { return m_accepted; }

private:
    QString m_accepted;
    QString m_error;
    int m_errorPosition = -1;
};
