#pragma once

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>

#include <gtest/gtest.h>

/// Skips a test where there is no Python to judge it.
#define REQUIRE_PYTHON()                                                                           \
    if (QStandardPaths::findExecutable("python3").isEmpty())                                       \
    GTEST_SKIP() << "python3 is not installed"

/// What the program prints; it is to end without an error.
inline QByteArray runPython(const QString& program, const QStringList& arguments = {},
                            const QByteArray& input = {})
{
    QProcess python;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PYTHONIOENCODING", "utf-8");
    python.setProcessEnvironment(environment);
    python.start("python3", QStringList{"-c", program} + arguments);
    python.write(input);
    python.closeWriteChannel();
    EXPECT_TRUE(python.waitForFinished(60000) && python.exitCode() == 0)
        << python.readAllStandardError().toStdString();
    return python.readAllStandardOutput();
}
