#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <exception>

/// Base of every error that our libraries raise: one translated message, ready to show.
class KELVANE_BASIC_EXPORT HbeError : public std::exception
{
public:
    explicit HbeError(const QString& message);
    HbeError(const HbeError&) = default;
    HbeError& operator=(const HbeError&) = default;
    ~HbeError() override;

    const QString& getMessage() const { return m_message; }

    /// The message in UTF-8.
    const char* what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_message;
    QByteArray m_utf8;
};
