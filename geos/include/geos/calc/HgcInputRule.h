#pragma once

#include <geos/calc/HgcExport.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

/// What a calculator asks of its input: how many variables of a role. A plain value; the variables
/// are counted by whoever holds them.
struct KELVANE_GEOS_EXPORT HgcInputRule {
    static constexpr int NO_LIMIT = -1;

    QString role;           ///< key of the role
    int minimum = 1;        ///< variables at least
    int maximum = NO_LIMIT; ///< variables at most
    QStringList types;      ///< keys of the variable types that count; empty: all of them

    /// Why so many variables do not satisfy the rule, translated; empty when they do.
    QString check(int count) const;
};
