#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDatasetVariable.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>

class KudADataTable;
class KufISampleFilterRule;

/// Rules as text, one line each, for people, scripts and the command line:
///
///     zinc > 300            also < <= >= = !=; and ≤ ≥ ≠
///     lead = 2 +- 0.5       within a tolerance; also !=, and ±
///     dist in [0, 0.2)      a bracket includes its bound, a parenthesis does not
///     om is defined
///     name contains "Bore"  also = and !=
///     landuse in {Ag, Ah}   also landuse = "Ag"; {} is no category at all
///     selected              the table's first selection variable; also: not selected
///     marked selected       that selection variable; also: marked not selected
///
/// Words are read in any case. A name of letters, digits, "_" and "." that begins with a letter or
/// "_" stands as it is, any other (and the words above) in double quotes; the name of a category
/// may begin with a digit and hold "-", too. A realization or a component is named in full. In
/// double quotes \" \\ \n \r \t and \u with four hexadecimal digits stand for characters. Numbers
/// are in the C locale; "inf" is a number.
///
/// Parsing a printed rule gives a rule of the same condition on the same variable: of a numeric or
/// alpha rule the fields of the mode in use, which are all that is printed.
class KELVANE_UTIL_EXPORT KufSampleFilterRuleText
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterRuleText)

public:
    struct Rule {
        KudDatasetVariable variable;
        QSharedPointer<KufISampleFilterRule> rule; ///< never null
    };

    /// The table whose variables the rules name; borrowed, it outlives this object.
    explicit KufSampleFilterRuleText(const KudADataTable& table);

    /// A user error when the text is no rule, names a variable or a category that the table does
    /// not have, or asks of a variable what its kind cannot answer. The message names the character
    /// (counted from 1) and what was expected there.
    Rule parse(const QString& text) const;

    QString print(const KudDatasetVariable& variable, const KufISampleFilterRule& rule) const;

    /// The variable that "selected" alone stands for, or an empty one.
    KudDatasetVariable getSelectionVariable() const;

private:
    const KudADataTable& m_table;
};
