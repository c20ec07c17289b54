#include "ToolCommands.h"
#include "ToolInterrupt.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolProgress.h"
#include "ToolText.h"

#include <util/dataset/KudDatasetDirectory.h>
#include <util/filter/KufSampleFilterCombinationValidator.h>
#include <util/filter/KufSampleFilterDirectory.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QHash>

namespace
{
using FileCheck = KudDatasetDirectory::FileCheck;

std::vector<FileCheck> check(const KudDatasetDirectory& project)
{
    ToolProgress progress(Tool::tr("Checking"));
    return project.check([&progress](int done, int count) {
        progress.show(done, count);
        return ToolInterrupt::getSignal() == 0;
    });
}

const char* statusOf(const FileCheck& file)
{
    if (!file.errors.isEmpty())
        return "wrong";
    return file.isMemento ? "ok" : "foreign";
}

bool isFilter(const FileCheck& file)
{
    return file.id.getRelation() == KufSampleFilter::getMementoRelation();
}

/// The directory of datasets knows no filters: they are read here, and their names compared.
void checkFilters(const QString& project, std::vector<FileCheck>& files)
{
    const KufSampleFilterDirectory filters(project);
    QHash<QString, QString> fileOfName;
    for (FileCheck& file : files) {
        if (!isFilter(file) || !file.errors.isEmpty())
            continue;
        try {
            const KufSampleFilter filter = filters.read(file.id);
            file.name = filter.getName();
            const KufSampleFilterCombinationValidator combination(&filter);
            if (!combination.isValid())
                file.errors.append(combination.getError());
        } catch (const HbeUserError& error) {
            file.errors.append(error.getMessage());
            continue;
        }
        if (file.name.isEmpty())
            file.errors.append(Tool::tr("The sample filter has no name."));
        else if (fileOfName.contains(file.name))
            file.errors.append(Tool::tr("'%1' holds a sample filter of the same name, '%2'.")
                                   .arg(fileOfName.value(file.name), file.name));
        else
            fileOfName.insert(file.name, file.fileName);
    }
}

QByteArray toJson(const QString& project, const std::vector<FileCheck>& files, int wrong)
{
    ToolJson json;
    json.beginObject();
    json.key("project").value(project);
    json.key("wrong").value(qint64(wrong));
    json.key("files").beginArray();
    for (const FileCheck& file : files) {
        json.beginObject();
        json.key("file").value(file.fileName);
        json.key("status").value(QString::fromLatin1(statusOf(file)));
        json.key("relation").textOrNull(file.id.getRelation());
        json.key("name").textOrNull(file.name);
        json.key("errors").value(file.errors);
        json.key("warnings").value(file.warnings);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.toByteArray();
}

QString toText(const FileCheck& file)
{
    QString text;
    if (file.isMemento && file.errors.isEmpty())
        text = Tool::tr("ok     %1").arg(file.fileName);
    else if (file.isMemento)
        text = Tool::tr("WRONG  %1").arg(file.fileName);
    else
        text = Tool::tr("other  %1  no memento file; left alone").arg(file.fileName);
    if (!file.name.isEmpty())
        text += (isFilter(file) ? Tool::tr("  sample filter '%1'") : Tool::tr("  dataset '%1'"))
                    .arg(ToolText::makeVisible(file.name));
    text += QLatin1Char('\n');
    for (const QString& error : file.errors)
        text += QStringLiteral("       %1\n")
                    .arg(QString(error).replace(QLatin1Char('\n'), QStringLiteral("\n       ")));
    for (const QString& warning : file.warnings)
        text += Tool::tr("       warning: %1\n").arg(warning);
    return text;
}

int run(const QCommandLineParser& line)
{
    const QString path = line.positionalArguments().first();
    std::vector<FileCheck> files = check(KudDatasetDirectory(path));
    checkFilters(path, files);
    int mementos = 0;
    int wrong = 0;
    QString text;
    for (const FileCheck& file : files) {
        mementos += file.isMemento ? 1 : 0;
        wrong += file.errors.isEmpty() ? 0 : 1;
        text += toText(file);
    }
    text += wrong == 0 ? Tool::tr("Nothing is wrong; memento files: %1.\n").arg(mementos)
                       : Tool::tr("Wrong: %1 of %2 memento files.\n").arg(wrong).arg(mementos);
    if (line.isSet(QStringLiteral("json")))
        ToolOutput::print(toJson(path, files, wrong));
    else
        ToolOutput::print(text);
    return wrong == 0 ? ExitDone : ExitWrongInput;
}
} // namespace

ToolCommand createCheckCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("check");
    command.arguments = QStringLiteral("DIR");
    command.summary = Tool::tr("Reads every file of a project and says what is wrong with which.");
    command.details =
        Tool::tr("Nothing is changed. Other files in the directory are mentioned, not faulted. "
                 "The exit code is 1 when a file is wrong.");
    command.example = QStringLiteral("kelvane check survey");
    command.options = {{QStringLiteral("json"), QString(), Tool::tr("One JSON document.")}};
    command.minArguments = 1;
    command.maxArguments = 1;
    command.run = &run;
    return command;
}
