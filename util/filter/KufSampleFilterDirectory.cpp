#include <util/filter/KufSampleFilterDirectory.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeUserError.h>

KufSampleFilterDirectory::KufSampleFilterDirectory(const QString& path)
    : m_directory(path)
{
}

QList<KuuId> KufSampleFilterDirectory::getIds() const
{
    if (!m_directory.exists())
        throw HbeUserError(tr("There is no directory '%1'.").arg(m_directory.path()));
    return KuxXmlMementoFile::getIdList(m_directory, KufSampleFilter::getMementoRelation());
}

/// Of the name alone: a damaged filter is found, so that reading it says what is wrong.
QString KufSampleFilterDirectory::readNameOrWarn(const KuuId& id) const
{
    const QString name = KuxXmlMementoFile::peekText(m_directory, id, QStringLiteral("name"));
    if (!name.isEmpty())
        return name;
    try {
        return read(id).getName();
    } catch (const HbeUserError& error) {
        HbbDebug::printWarning(error.getMessage());
        return QString();
    }
}

QStringList KufSampleFilterDirectory::getNames() const
{
    QStringList names;
    const QList<KuuId> ids = getIds();
    for (const KuuId& id : ids) {
        const QString name = readNameOrWarn(id);
        if (!name.isEmpty())
            names.append(name);
    }
    return names;
}

KuuId KufSampleFilterDirectory::findName(const QString& name) const
{
    KuuId found;
    const QList<KuuId> ids = name.isEmpty() ? QList<KuuId>() : getIds();
    for (const KuuId& id : ids) {
        if (readNameOrWarn(id) != name)
            continue;
        if (found.isValid())
            throw HbeUserError(tr("'%1' holds more than one sample filter of the name '%2'.")
                                   .arg(m_directory.path(), name));
        found = id;
    }
    return found;
}

KufSampleFilter KufSampleFilterDirectory::read(const KuuId& id) const
{
    try {
        KufSampleFilter filter;
        filter.setMemento(KuxXmlMementoFile::read(m_directory, id), true);
        return filter;
    } catch (const HbeError& error) {
        throw HbeUserError(tr("Cannot read the sample filter file '%1': %2")
                               .arg(m_directory.filePath(KuxXmlMementoFile::getFileName(id)),
                                    KuxXmlMementoFile::getReason(error)));
    }
}

KufSampleFilter KufSampleFilterDirectory::read(const QString& name) const
{
    const KuuId id = findName(name);
    if (id.isValid())
        return read(id);
    const QStringList names = getNames();
    if (names.isEmpty())
        throw HbeUserError(tr("'%1' holds no sample filter.").arg(m_directory.path()));
    throw HbeUserError(tr("'%1' holds no sample filter '%2'. It holds: %3.")
                           .arg(m_directory.path(), name, names.join(QLatin1String(", "))));
}

void KufSampleFilterDirectory::save(const KufSampleFilter& filter, const KuuId& id) const
{
    const KuuId target = id.isValid() ? id : filter.getId();
    if (filter.getName().isEmpty())
        throw HbeUserError(tr("A sample filter needs a name to be saved."));
    const KuuId owner = findName(filter.getName());
    if (owner.isValid() && owner != target)
        throw HbeUserError(tr("'%1' holds a sample filter of the name '%2' already.")
                               .arg(m_directory.path(), filter.getName()));
    KuxXmlMementoFile::save(m_directory, KuuMemento(target, filter.getMemento()));
}

void KufSampleFilterDirectory::replace(const KufSampleFilter& filter) const
{
    save(filter, findName(filter.getName()));
}

bool KufSampleFilterDirectory::remove(const KuuId& id) const
{
    if (!KuxXmlMementoFile::exists(m_directory, id))
        return false;
    KuxXmlMementoFile::destroy(m_directory, id);
    return true;
}
