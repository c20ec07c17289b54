#pragma once

#include <util/KuExport.h>

#include <basic/calc/HbcAProgress.h>

#include <QtCore/QFileInfo>
#include <QtCore/QString>

#include <vector>

class QFile;

/// A long task on a directory: copying it, with all that it holds, into another one.
///
///     KusDirUtils task(source);
///     task.setOperation(KusDirUtils::Operation::COPY, target);
///     if (!task.runInCurrentThread()) … task.getErrorText() …
///
/// The copy stands in the target under the source's name. It is built beside that name and renamed
/// at the end, so that it appears whole or not at all: after an error or a cancel a step "Cleaning"
/// removes what was made, and nothing else. Nothing that exists is ever replaced.
///
/// Files keep their permissions and modification times, directories their permissions. Symbolic
/// links are copied as links, with the text they hold, and never followed. A target inside the
/// source is refused, and so is an entry that is neither file, directory nor link.
///
/// What fails is a HbeDiskError. The counter counts bytes, and one unit for each entry.
class KELVANE_UTIL_EXPORT KusDirUtils : public HbcAProgress
{
    Q_OBJECT

public:
    enum class Operation { COPY };

    explicit KusDirUtils(const QString& directory, QObject* parent = nullptr);
    ~KusDirUtils() override;

    /// What the next run does. The target of a copy is an existing directory.
    void setOperation(Operation operation, const QString& target);

protected:
    void _run() override;

private:
    /// A directory of the source and its entries, and the directory that it is copied to.
    struct Step {
        QFileInfo source;
        QString target;
    };

    void checkDirectories() const;
    void copyBeside(const QString& partial);
    void copyDirectory(const Step& step, std::vector<Step>& pending);
    void copyLink(const QFileInfo& source, const QString& target);
    void copyFile(const QFileInfo& source, const QString& target);
    void copyContent(QFile& from, QFile& to);
    void clean(const QString& partial);

    QString m_directory;
    QString m_target;
    bool m_operationSet = false;
    std::vector<char> m_block; // between source and target, for the time of a run
};
