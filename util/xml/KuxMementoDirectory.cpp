#include <util/xml/KuxMementoDirectory.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeUserError.h>

KuxMementoDirectory::KuxMementoDirectory(const QString& path, const QString& relation,
                                         const QString& kind)
    : m_directory(path)
    , m_relation(relation)
    , m_kind(kind)
{
}

KuxMementoDirectory::~KuxMementoDirectory() = default;

void KuxMementoDirectory::requireExists() const
{
    if (!exists())
        throw HbeUserError(tr("There is no directory '%1'.").arg(getPath()));
}

QString KuxMementoDirectory::filePath(const KuuId& id) const
{
    return m_directory.filePath(KuxXmlMementoFile::getFileName(id));
}

QList<KuuId> KuxMementoDirectory::getIds() const
{
    requireExists();
    return KuxXmlMementoFile::getIdList(m_directory, m_relation);
}

QString KuxMementoDirectory::readName(const KuuId& id) const
{
    const QString name = KuxXmlMementoFile::peekText(m_directory, id, QStringLiteral("name"));
    return name.isEmpty() ? _readNameOf(id) : name;
}

std::vector<std::pair<KuuId, QString>> KuxMementoDirectory::readNames() const
{
    std::vector<std::pair<KuuId, QString>> names;
    for (const KuuId& id : getIds()) {
        try {
            const QString name = readName(id);
            if (!name.isEmpty())
                names.emplace_back(id, name);
        } catch (const HbeUserError& error) {
            HbbDebug::printWarning(error.getMessage());
        }
    }
    return names;
}

QStringList KuxMementoDirectory::getNames() const
{
    QStringList names;
    for (const auto& [id, name] : readNames())
        names.append(name);
    return names;
}

KuuId KuxMementoDirectory::findName(const QString& wanted) const
{
    KuuId found;
    for (const auto& [id, name] : readNames()) {
        if (name != wanted)
            continue;
        if (found.isValid())
            throw HbeUserError(
                tr("'%1' holds more than one %2 of the name '%3'.").arg(getPath(), m_kind, name));
        found = id;
    }
    return found;
}

void KuxMementoDirectory::readMemento(const KuuId& id,
                                      const std::function<void(const KuuMemento&)>& restore) const
{
    try {
        restore(KuxXmlMementoFile::read(m_directory, id));
    } catch (const HbeError& error) {
        throw HbeUserError(tr("Cannot read the %1 file '%2': %3")
                               .arg(m_kind, filePath(id), KuxXmlMementoFile::getReason(error)));
    }
}

void KuxMementoDirectory::saveMemento(const KuuMemento& memento, const KuuId& id) const
{
    KuxXmlMementoFile::save(m_directory, id.isValid() ? KuuMemento(id, memento) : memento);
}
