#pragma once

#include <basic/error/HbeError.h>

/// The text of the error of this class that the operation raises; "no error" when it raises none.
template <class Error, class Operation>
QString errorOf(Operation operation)
{
    try {
        operation();
    } catch (const Error& error) {
        return error.getMessage();
    }
    return QStringLiteral("no error");
}
