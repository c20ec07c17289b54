#pragma once

#include <gtest/gtest.h>

#include <QtCore/QProcess>

/// What a command line of the shell prints, of whose arguments "$1" is the first.
inline QByteArray runShell(const QString& command, const QStringList& arguments = {},
                           bool mayFail = false)
{
    QProcess shell;
    shell.start("bash", QStringList{"-o", "pipefail", "-c", command, "bash"} + arguments);
    EXPECT_TRUE(shell.waitForFinished(120000)) << command.toStdString();
    EXPECT_TRUE(mayFail || shell.exitCode() == 0) << command.toStdString() << '\n'
                                                  << shell.readAllStandardError().toStdString();
    return shell.readAllStandardOutput();
}
