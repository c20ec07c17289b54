#include <util/filter/KufSampleFilterDirectory.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/error/HbeUserError.h>

namespace
{
/// A user error for a text, however deep it is, that would be another one in the file: the filter
/// would select other samples, or have another name.
void requireWritable(const QVariant& value)
{
    if (value.type() == QVariant::Map) {
        for (const QVariant& field : value.toMap())
            requireWritable(field);
    } else if (value.type() == QVariant::List || value.type() == QVariant::StringList) {
        for (const QVariant& item : value.toList())
            requireWritable(item);
    } else if (value.type() == QVariant::String) {
        const QString text = value.toString();
        const int at = KuxXmlMementoFile::findUnwritable(text);
        if (at >= 0)
            throw HbeUserError(KufSampleFilterDirectory::tr(
                                   "The sample filter cannot be saved: no file can hold the "
                                   "character U+%1 at %2 of the text '%3'.")
                                   .arg(text.at(at).unicode(), 4, 16, QLatin1Char('0'))
                                   .arg(at + 1)
                                   .arg(text));
    }
}
} // namespace

KufSampleFilterDirectory::KufSampleFilterDirectory(const QString& path)
    : KuxMementoDirectory(path, KufSampleFilter::getMementoRelation(), tr("sample filter"))
{
}

QString KufSampleFilterDirectory::_readNameOf(const KuuId& id) const
{
    return read(id).getName();
}

KufSampleFilter KufSampleFilterDirectory::read(const KuuId& id) const
{
    KufSampleFilter filter;
    readMemento(id, [&](const KuuMemento& memento) { filter.setMemento(memento, true); });
    return filter;
}

KufSampleFilter KufSampleFilterDirectory::read(const QString& name) const
{
    const KuuId id = findName(name);
    if (id.isValid())
        return read(id);
    const QStringList names = getNames();
    if (names.isEmpty())
        throw HbeUserError(tr("'%1' holds no sample filter.").arg(getPath()));
    throw HbeUserError(tr("'%1' holds no sample filter '%2'. It holds: %3.")
                           .arg(getPath(), name, names.join(QLatin1String(", "))));
}

void KufSampleFilterDirectory::save(const KufSampleFilter& filter, const KuuId& id) const
{
    const KuuId target = id.isValid() ? id : filter.getId();
    if (filter.getName().isEmpty())
        throw HbeUserError(tr("A sample filter needs a name to be saved."));
    const KuuId owner = findName(filter.getName());
    if (owner.isValid() && owner != target)
        throw HbeUserError(tr("'%1' holds a sample filter of the name '%2' already.")
                               .arg(getPath(), filter.getName()));
    const KuuMemento memento = filter.getMemento();
    requireWritable(memento.getFields());
    saveMemento(memento, id);
}

void KufSampleFilterDirectory::replace(const KufSampleFilter& filter) const
{
    save(filter, findName(filter.getName()));
}

bool KufSampleFilterDirectory::remove(const KuuId& id) const
{
    if (!KuxXmlMementoFile::exists(directory(), id))
        return false;
    KuxXmlMementoFile::destroy(directory(), id);
    return true;
}
