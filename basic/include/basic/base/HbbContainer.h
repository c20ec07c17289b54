#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

/// Small operations on collections.
class KELVANE_BASIC_EXPORT HbbContainer
{
public:
    /// The name itself when it is free, otherwise the first free one of "name (1)", "name (2)" …
    /// A name that ends in such a number counts on from it: the copy of "name (1)" is "name (2)".
    /// Names are compared exactly, case included.
    static QString getUniqueName(const QString& name,
                                 const std::function<bool(const QString&)>& isTaken);
    static QString getUniqueName(const QString& name, const QStringList& takenNames);
};
