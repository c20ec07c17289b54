#include <util/system/KusPath.h>

#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <mutex>

namespace
{
struct Shortcut {
    QLatin1String text;
    QLatin1String directory;
};

constexpr Shortcut SHORTCUTS[] = {
    {KusPath::shortcutPublic, KusPath::dirPublic},
    {KusPath::shortcutReport, KusPath::dirReport},
    {KusPath::shortcutBatch, KusPath::dirBatch},
    {KusPath::shortcutPreview, KusPath::dirPreview},
    {KusPath::shortcutDatabase, KusPath::dirDatabase},
};

const QLatin1Char SLASH('/');

/// The shortcut that the text begins with, or null.
const Shortcut* findShortcut(const QString& text)
{
    for (const Shortcut& shortcut : SHORTCUTS) {
        if (text.startsWith(shortcut.text, KusPath::compareCaseSensitivity))
            return &shortcut;
    }
    return nullptr;
}

/// What stands behind the shortcut, without the slash before it.
QString getRest(const QString& text, const Shortcut& shortcut)
{
    int begin = shortcut.text.size();
    while (begin < text.size() && text.at(begin) == SLASH)
        ++begin;
    return text.mid(begin);
}

QString join(const QString& directory, const QString& rest)
{
    if (rest.isEmpty())
        return directory;
    return directory.endsWith(SLASH) ? directory + rest : directory + SLASH + rest;
}

/// The shortcut is kept apart: to cleanPath it is a name, which a following ".." would take away.
QString cleaned(const QString& path)
{
    const QString plain = QDir::fromNativeSeparators(path);
    const Shortcut* shortcut = findShortcut(plain);
    if (!shortcut)
        return QDir::cleanPath(plain);
    const QString rest = QDir::cleanPath(getRest(plain, *shortcut));
    return join(shortcut->text, rest == QLatin1String(".") ? QString() : rest);
}

/// Whether the path is the directory or lies below it.
bool isWithin(const QString& path, const QString& directory)
{
    return path.startsWith(directory, KusPath::compareCaseSensitivity) &&
           (path.size() == directory.size() || path.at(directory.size()) == SLASH);
}

std::mutex& resolverMutex()
{
    static std::mutex mutex;
    return mutex;
}

KusPath::ProjectResolver& currentResolver()
{
    static KusPath::ProjectResolver resolver;
    return resolver;
}
} // namespace

KusPath::ProjectResolver KusPath::setProjectResolver(ProjectResolver resolver)
{
    const std::lock_guard<std::mutex> lock(resolverMutex());
    std::swap(resolver, currentResolver());
    return resolver;
}

QString KusPath::getInstallDirectory()
{
    const QString directory = qEnvironmentVariable("KELVANE_HOME");
    if (!directory.isEmpty() && !QFileInfo(directory).isDir()) {
        throw HbeUserError(tr("Install directory (found in KELVANE_HOME environment variable) '%1' "
                              "does not exist.")
                               .arg(directory));
    }
    return QDir::cleanPath(QDir::fromNativeSeparators(directory));
}

KusPath::KusPath(const QString& fullPath, const QString& projectId)
    : m_projectId(projectId)
{
    setFullPath(fullPath);
}

void KusPath::setFullPath(const QString& path)
{
    if (!path.isEmpty() && !isPathShortcutPrefixed(path) && QDir::isRelativePath(path)) {
        HBE_PROGRAMMING_ERROR(
            "system/KusPath",
            tr("Relative paths are not authorized in KusPath! Provided path was ") + path);
    }
    m_path = path.isEmpty() ? QString() : cleaned(path);
}

void KusPath::setPath(const QString& directory, const QString& name)
{
    setFullPath(directory.isEmpty() ? name : join(directory, name));
}

/// Empty when there is no project, no resolver, or none that knows the project.
QString KusPath::projectDirectory() const
{
    if (m_projectId.isEmpty())
        return QString();
    ProjectResolver resolver;
    {
        const std::lock_guard<std::mutex> lock(resolverMutex());
        resolver = currentResolver();
    }
    const QString directory = resolver ? resolver(m_projectId) : QString();
    return directory.isEmpty() ? QString() : QDir::cleanPath(QDir::fromNativeSeparators(directory));
}

bool KusPath::isValid() const
{
    return !m_path.isEmpty() && (!dirIsShortcut() || !projectDirectory().isEmpty());
}

bool KusPath::exists() const
{
    return isValid() && QFileInfo::exists(absolutePath());
}

QString KusPath::absolutePath() const
{
    return join(absoluteDirPath(), fileName());
}

QString KusPath::absoluteDirPath() const
{
    const Shortcut* shortcut = findShortcut(m_path);
    if (!shortcut)
        return m_path.isEmpty() ? QString() : QFileInfo(m_path).absolutePath();

    if (m_projectId.isEmpty()) {
        HBE_PROGRAMMING_ERROR("system/KusPath",
                              tr("Cannot use shortcut while no project is provided"));
    }
    const QString project = projectDirectory();
    if (project.isEmpty())
        HBE_PROGRAMMING_ERROR("system/KusPath", tr("Project path is empty"));

    const QString rest = getRest(m_path, *shortcut);
    const QString restDirectory = rest.left(qMax(0, rest.lastIndexOf(SLASH)));
    return QDir::cleanPath(join(join(project, shortcut->directory), restDirectory));
}

QString KusPath::canonicalPath() const
{
    return m_path.isEmpty() ? QString() : QFileInfo(absolutePath()).canonicalFilePath();
}

QString KusPath::shortPath() const
{
    if (dirIsShortcut())
        return m_path;
    const QString path = absolutePath();
    const QString project = projectDirectory();
    if (project.isEmpty())
        return path;
    for (const Shortcut& shortcut : SHORTCUTS) {
        const QString directory = join(project, shortcut.directory);
        if (isWithin(path, directory))
            return shortcut.text + path.mid(directory.size());
    }
    return path;
}

QString KusPath::fileName() const
{
    const Shortcut* shortcut = findShortcut(m_path);
    return QFileInfo(shortcut ? getRest(m_path, *shortcut) : m_path).fileName();
}

QString KusPath::completeBaseName() const
{
    return QFileInfo(fileName()).completeBaseName();
}

bool KusPath::isSameFile(const KusPath& other) const
{
    if (!exists() || !other.exists())
        return false;
    return canonicalPath().compare(other.canonicalPath(), compareCaseSensitivity) == 0;
}

bool KusPath::isSamePath(const KusPath& other) const
{
    if (isValid() && other.isValid())
        return absolutePath().compare(other.absolutePath(), compareCaseSensitivity) == 0;
    return m_projectId == other.m_projectId &&
           m_path.compare(other.m_path, compareCaseSensitivity) == 0;
}

bool KusPath::isPathShortcutPrefixed(const QString& text)
{
    return findShortcut(text) != nullptr;
}

QString KusPath::convertStringToValidFileName(const QString& text)
{
    static const QRegularExpression invalid(QStringLiteral("[:*?\"<>|/\\\\\\x00-\\x1f]"));
    static const QRegularExpression onlyDots(QStringLiteral("^\\.{1,2}$"));
    QString name = text;
    name.replace(invalid, QStringLiteral("_"));
    if (name.contains(onlyDots))
        name.fill(QLatin1Char('_')); // the directory itself, or its parent
    return name;
}

QRegularExpression KusPath::getValidFileRegExpForLineEdit()
{
    return QRegularExpression(QStringLiteral("^(?!\\.{1,2}$)[^:*?\"<>|/\\\\\\x00-\\x1f]*$"));
}
