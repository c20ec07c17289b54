#pragma once

#include "FileBytes.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>

/// What a run of the tool left behind.
struct ToolRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;

    /// The one JSON document of stdout; a null one when it is none.
    QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
};

/// Runs the tool as a user would, in an empty folder of its own.
class ToolTest : public testing::Test
{
protected:
    ToolRun run(const QStringList& arguments, const QString& locale = QString())
    {
        QProcess process;
        start(process, arguments, locale);
        ToolRun result;
        EXPECT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << arguments.join(' ').toStdString();
        result.exitCode = process.exitCode();
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }

    void start(QProcess& process, const QStringList& arguments, const QString& locale = QString())
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("QT_QPA_PLATFORM"); // the user need not know of it
        environment.insert("KELVANE_USER_DIR", m_userFolder.path());
        if (!locale.isEmpty())
            environment.insert("LC_ALL", locale);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder.path());
        process.start(qEnvironmentVariable("KELVANE_TOOL"), arguments);
    }

    /// Runs what must succeed.
    ToolRun ok(const QStringList& arguments, const QString& locale = QString())
    {
        const ToolRun result = run(arguments, locale);
        EXPECT_EQ(result.exitCode, 0) << arguments.join(' ').toStdString() << '\n'
                                      << result.err.toStdString();
        return result;
    }

    /// Runs what must fail so, with these words and nothing on stdout; answers all of its words.
    QByteArray fault(const QStringList& arguments, int exitCode, const QByteArray& words)
    {
        const ToolRun result = run(arguments);
        const std::string line = arguments.join(' ').toStdString() + '\n';
        EXPECT_EQ(result.exitCode, exitCode) << line << result.err.toStdString();
        EXPECT_TRUE(result.err.contains(words)) << line << result.err.toStdString();
        EXPECT_EQ(result.out, "") << line;
        return result.err;
    }

    /// The first dataset that `info --json` shows.
    QJsonObject dataset(const QString& project, const QStringList& options = {})
    {
        const QJsonObject info = ok(QStringList{"info", project, "--json"} + options).json();
        return info["datasets"].toArray()[0].toObject();
    }

    /// A real file of the test data; the test is skipped by requireData where there is none.
    QString data(const QString& name) const
    {
        return qEnvironmentVariable("KELVANE_TEST_DATA") + '/' + name;
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    void write(const QString& name, const QByteArray& bytes) const
    {
        writeBytes(path(name), bytes);
    }

    QByteArray read(const QString& name) const { return readBytes(path(name)); }

    /// Everything in the folder, hidden files included.
    QStringList entries(const QString& folder = QString()) const
    {
        return QDir(path(folder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_folder;
    QTemporaryDir m_userFolder; // of the user's own units, coordinate systems, …
};

/// Skips a test that needs the collection of real files where it is not at hand.
#define REQUIRE_DATA(name)                                                                         \
    if (!QFile::exists(data(name)))                                                                \
    GTEST_SKIP() << "no file " << data(name).toStdString()
