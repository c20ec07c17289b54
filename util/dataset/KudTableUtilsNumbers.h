#pragma once

#include <basic/unit/HbuUnitTransfo.h>

#include <QtCore/QtGlobal>

struct HbdVariableDetails;

/// Numbers as people see and type them: in the unit shown, where an integer may be a real.
namespace KudTableUtilsNumbers
{
/// From the storage unit to the one shown; the identity where nothing converts.
HbuUnitTransfo shownTransfo(const HbdVariableDetails& details);

/// The integer that a real was meant to be, after a conversion has rounded it; undefined for none.
qint64 nearestInteger(double number);
} // namespace KudTableUtilsNumbers
