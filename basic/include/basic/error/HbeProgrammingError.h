#pragma once

#include <basic/error/HbeError.h>

/// A broken precondition: the caller is wrong, not the user.
class KELVANE_BASIC_EXPORT HbeProgrammingError : public HbeError
{
public:
    using HbeError::HbeError;
    ~HbeProgrammingError() override;

    /// Throws with the text "'%1' in file '%2' failed:\n\n%3": the signature of the operation, its
    /// source path without extension (as the module spells it: "extern\KueCsv") and the message.
    [[noreturn]] static void raise(const char* signature, const char* sourcePath,
                                   const QString& message);
};

/// Raises a programming error in the name of the current function.
#define HBE_PROGRAMMING_ERROR(sourcePath, message)                                                 \
    HbeProgrammingError::raise(Q_FUNC_INFO, sourcePath, message)
