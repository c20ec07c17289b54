#pragma once

#include <util/filter/KufSampleFilterASTVisitor.h>

#include <util/dataset/KudDatasetVariable.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class KudADataset;
class KufISampleFilterRule;

/// A filter as an expression of Python with NumPy, whose value is one truth value a sample.
///
/// A variable is designated as an item of a mapping, by its full name as a Python text:
/// `data['Zn[3]']`. The name of the mapping is the visitor's text argument, "data" where that is
/// empty. In the name of a variable, and only there, whatever could end the quoted text is escaped
/// in both forms. The expression expects:
/// - `np`, which is NumPy;
/// - `qm_find(texts, part)`: for each text the position of the part, -1 where it is absent or the
///   text is undefined;
/// - of a number's item an array of reals with NaN for undefined values, of integers when none is
///   undefined (dates in milliseconds since 1970-01-01 UTC);
/// - of a selection's item an array of 0 and 1;
/// - of a text's item something whose comparison with a text gives one truth value a sample, False
///   for an undefined text in `==` and `!=` alike;
/// - of a category's item the same: comparing with a label compares the codes.
///
/// The Python package of this project offers all that for the datasets of a project, and evaluates
/// the text without executing it (docs/python.md).
///
/// A filter without rules gives an empty text.
class KELVANE_UTIL_EXPORT KufSampleFilterPythonVisitor final : public KufSampleFilterASTVisitor
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterPythonVisitor)

public:
    /// All are borrowed, for the time of the call; `variables` holds one variable a rule, in rule
    /// order. With a dataset the filter must be valid for it (a user error otherwise, see
    /// KufSampleFilterValidator); without, the text is made without a look at what it applies to.
    KufSampleFilterPythonVisitor(const KufISampleFilter* filter, const KudADataset* dataset,
                                 const QList<KudDatasetVariable>& variables,
                                 const QString& mapping);
    ~KufSampleFilterPythonVisitor() override;

    /// The texts of the rules stand between single quotes as they are, numbers have 12 decimals.
    /// Do not hand it to an interpreter unless findQuotingFaults() is empty: a text may break out
    /// of its quotes.
    QString getPythonString() const { return m_plain.result(); }

    /// The same with the texts of the rules escaped, so that any text stays a text, and with
    /// numbers in the shortest form that reads back exactly, so that it selects what the bit array
    /// selects.
    QString getEscapedPythonString() const { return m_escaped.result(); }

    /// The texts of the rules that hold a character which ends or changes a quoted text in the form
    /// without escapes, a line each, with the first such character: "R2: the text 'O'Hara' holds
    /// the character ' (U+0027) at 2.". Empty when both forms mean the same texts.
    const QStringList& findQuotingFaults() const { return m_quotingFaults; }

    /// The numbers that 12 decimals do not hold, a line each: "R1: the number 1e-20 has more than
    /// 12 decimals.". The form without escapes compares with others, and selects other samples
    /// perhaps.
    const QStringList& findRoundedNumbers() const { return m_roundedNumbers; }

private:
    void _visitRule(int index) override;
    void _visitNot() override;
    void _visitAnd() override;
    void _visitOr() override;

    struct Operands {
        QVector<QString> stack;
        QString result() const { return stack.isEmpty() ? QString() : stack.last(); }
        void negate();
        void combine(QLatin1String sign);
    };
    void checkQuoting(const QString& ruleName, const KufISampleFilterRule& rule);

    QList<KudDatasetVariable> m_variables;
    QString m_mapping;
    Operands m_plain;
    Operands m_escaped;
    QSet<int> m_checkedRules;
    QStringList m_quotingFaults;
    QStringList m_roundedNumbers;
};
