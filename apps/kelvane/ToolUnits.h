#pragma once

#include <util/dataset/KudDatasetVariable.h>

#include <basic/unit/HbuUnit.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QVector>

class KudADataset;
struct HbdVariableDetails;

/// Units on the command line: --units zinc=%,"depth, from"=ft. An option may be repeated; a name
/// that holds a comma stands in double quotes, or the whole of VAR=UNIT does. A unit is given by
/// its key or its symbol; "none" takes it away.
namespace ToolUnits
{
struct Choice {
    KudDatasetVariable variable;
    QString unit; ///< as it was given
};

/// What the option asks for. A usage error where a part is no VAR=UNIT; HbeUserError where the
/// dataset has no such variable, or the variable is named twice.
QVector<Choice> read(const QCommandLineParser& line, const QString& option,
                     const KudADataset& dataset);

bool isNone(const Choice& choice);

/// The unit to show or export the variable in: one of the class of its unit. HbeUserError, with
/// those there are.
HbuUnit findInClass(const Choice& choice, const HbdVariableDetails& details);

/// The unit that a variable's values are in: one of the class of its present unit, else of any
/// class, lengths first. "CLASS:unit" names the class where several have the unit. HbeUserError
/// where there is none.
HbuUnit findInAll(const Choice& choice, const HbdVariableDetails& details);

/// The symbol, or "none".
QString toText(const HbuUnit& unit);
} // namespace ToolUnits
