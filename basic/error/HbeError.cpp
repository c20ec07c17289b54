#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeError.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

HbeError::HbeError(const QString& message)
    : m_message(message)
    , m_utf8(message.toUtf8())
{
}

// The destructors stand here so that each class has its type information in one library: an
// exception thrown in one shared library is caught by its class in another.
HbeError::~HbeError() = default;
HbeUserError::~HbeUserError() = default;
HbeDiskError::~HbeDiskError() = default;
HbeProgrammingError::~HbeProgrammingError() = default;

void HbeProgrammingError::raise(const char* signature, const char* sourcePath,
                                const QString& message)
{
    throw HbeProgrammingError(
        QStringLiteral("'%1' in file '%2' failed:\n\n%3")
            .arg(QString::fromUtf8(signature), QString::fromUtf8(sourcePath), message));
}
