#pragma once

#include <basic/unit/HbuUnit.h>

/// Units as the command line names them: by key or symbol, with "CLASS:" before it where needed.
namespace ToolUnitSearch
{
struct Pair {
    HbuUnit from;
    HbuUnit to;
};

/// The class with this key, in any case. HbeUserError, with a hint, where there is none.
HbuEUnitClass findClass(const QString& text);

/// Two units of one class. Where several classes have both, they convert alike; else a
/// HbeUserError lists the choices.
Pair findPair(const QString& from, const QString& to);
} // namespace ToolUnitSearch
