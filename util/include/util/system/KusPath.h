#pragma once

#include <util/KuExport.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLatin1String>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>

#include <functional>

/// The path of a file that may begin with a project shortcut instead of a root, so that a path that
/// is stored inside a project stays valid when the project moves. A value; each of the operations
/// may run in any thread.
///
/// "%report%/wells.csv" is the file "report/wells.csv" of the project whose id the path holds. The
/// application tells where a project lives through `setProjectResolver`. Paths are compared without
/// regard to case on every platform.
///
/// Where a path must be resolved, a shortcut without a project, or of a project that is not known,
/// is a programming error.
class KELVANE_UTIL_EXPORT KusPath
{
    Q_DECLARE_TR_FUNCTIONS(KusPath)

public:
    static constexpr QLatin1String shortcutPublic{"%public%"};
    static constexpr QLatin1String shortcutReport{"%report%"};
    static constexpr QLatin1String shortcutBatch{"%batch%"};
    static constexpr QLatin1String shortcutPreview{"%preview%"};
    static constexpr QLatin1String shortcutDatabase{"%database%"};

    static constexpr QLatin1String dirPublic{"public"};
    static constexpr QLatin1String dirReport{"report"};
    static constexpr QLatin1String dirBatch{"batch"};
    static constexpr QLatin1String dirPreview{"preview"};
    static constexpr QLatin1String dirDatabase{"database"};

    static constexpr Qt::CaseSensitivity compareCaseSensitivity = Qt::CaseInsensitive;

    /// The directory of a project, empty when it is not known. Called in the thread of the path's
    /// user, possibly in several at once.
    using ProjectResolver = std::function<QString(const QString& projectId)>;

    /// Registers the application's answer and returns the one before.
    static ProjectResolver setProjectResolver(ProjectResolver resolver);

    /// The installation directory that the environment variable KELVANE_HOME names; empty when it
    /// is not set, a HbeUserError when there is no such directory.
    static QString getInstallDirectory();

    KusPath() = default;
    explicit KusPath(const QString& fullPath, const QString& projectId = QString());

    /// Takes an absolute path, or one that begins with a shortcut. A relative path is a programming
    /// error and leaves the path unchanged; an empty one makes it invalid.
    void setFullPath(const QString& path);
    /// The same from a directory and the name of a file in it.
    void setPath(const QString& directory, const QString& name);
    void setProjectId(const QString& id) { m_projectId = id; }

    /// The path as it is held: its shortcut, if any, not resolved.
    const QString& getFullPath() const { return m_path; }
    const QString& getProjectId() const { return m_projectId; }

    /// True when the path is not empty and its shortcut, if any, can be resolved.
    bool isValid() const;
    /// True when the path is valid and there is such a file or directory.
    bool exists() const;

    /// The whole path, resolved; empty when the path is.
    QString absolutePath() const;
    /// Its directory. A shortcut with nothing behind it is a directory of its own.
    QString absoluteDirPath() const;
    /// The absolute path without symbolic links; empty when there is no such file.
    QString canonicalPath() const;
    /// The path with the directory of the project replaced by a shortcut where that is possible, as
    /// it is to be stored; otherwise the absolute path.
    QString shortPath() const;

    QString fileName() const;
    QString completeBaseName() const;

    /// True when the path begins with a shortcut.
    bool dirIsShortcut() const { return isPathShortcutPrefixed(m_path); }

    /// True when both exist and are one file, symbolic links followed.
    bool isSameFile(const KusPath& other) const;
    /// True when both resolve to one path, or are one text of one project when they do not.
    bool isSamePath(const KusPath& other) const;

    static bool isPathShortcutPrefixed(const QString& text);

    /// The text with "_" for each character that the name of a file cannot hold on some platform.
    static QString convertStringToValidFileName(const QString& text);
    /// Matches the names that `convertStringToValidFileName` leaves as they are.
    static QRegularExpression getValidFileRegExpForLineEdit();

private:
    QString projectDirectory() const;

    QString m_path; // with "/", cleaned, the shortcut in lower case
    QString m_projectId;
};
