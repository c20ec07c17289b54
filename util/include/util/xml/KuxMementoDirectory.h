#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuId.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <functional>
#include <utility>
#include <vector>

class KuuMemento;

/// The named objects of one relation in a directory, one memento file each ("relation_UUID.xml"),
/// beside whatever else lies there. Nothing is cached: another program may write to the directory
/// at the same time, and each file is read and replaced as a whole.
///
/// Errors of a file are HbeUserError with its path: it is the user's file that is damaged. A class
/// that keeps objects derives from it.
class KELVANE_UTIL_EXPORT KuxMementoDirectory
{
    Q_DECLARE_TR_FUNCTIONS(KuxMementoDirectory)

public:
    virtual ~KuxMementoDirectory();

    bool exists() const { return m_directory.exists(); }
    QString getPath() const { return m_directory.path(); }

    /// The objects, by file name; a user error when the directory does not exist.
    QList<KuuId> getIds() const;

    /// The name of an object. Nothing else of the file is read, so a file may be damaged elsewhere.
    QString readName(const KuuId& id) const;

    /// The names of all objects. A file whose name cannot be read is warned of and left out, here
    /// and in findName: it must not shut the way to the others. One that is damaged elsewhere is
    /// there, so that whoever asks for it hears what is wrong with it.
    QStringList getNames() const;

    /// The object of that name, or an id that is not valid: nothing has the empty name. A user
    /// error when there are several.
    KuuId findName(const QString& wanted) const;

protected:
    /// `kind` is what messages call such an object: "dataset".
    KuxMementoDirectory(const QString& path, const QString& relation, const QString& kind);

    const QDir& directory() const { return m_directory; }
    void requireExists() const;
    QString filePath(const KuuId& id) const;

    /// Reads the file and has `restore` make the object; all that either finds wrong is said of the
    /// file.
    void readMemento(const KuuId& id, const std::function<void(const KuuMemento&)>& restore) const;

    /// Saves the memento, under the identity `id` instead of its own where that is valid.
    void saveMemento(const KuuMemento& memento, const KuuId& id) const;

private:
    /// Of an object whose field "name" is missing or empty: the name that it has once it is read.
    virtual QString _readNameOf(const KuuId& id) const = 0;

    std::vector<std::pair<KuuId, QString>> readNames() const;

    QDir m_directory;
    QString m_relation;
    QString m_kind;
};
