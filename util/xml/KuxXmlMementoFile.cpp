#include <util/xml/KuxXmlMementoFile.h>

#include "KuxMementoDom.h"
#include "KuxMementoXmlReader.h"
#include "KuxMementoXmlWriter.h"
#include "KuxXmlFile.h"
#include "KuxXmlGuard.h"
#include "KuxXmlText.h"

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>
#include <util/system/KusFileUtils.h>
#include <util/system/KusSafeFile.h>
#include <util/xml/KuxXml.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QXmlStreamReader>

using namespace KuxMementoXmlRules;

namespace
{
void checkValid(const KuuMemento& memento)
{
    if (!memento.isValid()) {
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, QObject::tr("Memento is not valid."));
    }
}

void writeDocument(KuxMementoXmlWriter& writer, const KuuMemento& memento)
{
    writer.open(memento.getId().getRelation());
    writeBody(writer, memento);
    writer.close();
}

// The root tag that the file has, and the memento when it is one.
KuuMemento readBytes(const char* bytes, qint64 size, const QString& name)
{
    KuuMemento memento;
    if (size <= KuxXmlLimits::FILE_SIZE && KuxMementoXmlReader(bytes, bytes + size).read(memento)) {
        return memento;
    }
    QDomDocument document;
    KuxXmlGuard guard(bytes, size, name);
    QString fault;
    int line = 0;
    int column = 0;
    if (!document.setContent(guard.getText(), true, &fault, &line, &column)) {
        KuxXmlGuard::raise(name, line, column, fault);
    }
    return KuxXmlMementoFile::xmlToMemento(document);
}

KuuMemento readFile(const QString& path)
{
    const KuxXmlFile file(path);
    return readBytes(file.begin(), file.size(), path);
}

QString filePath(const QDir& directory, const KuuId& id)
{
    return directory.filePath(KuxXmlMementoFile::getFileName(id));
}

QString fileNamePrefix(const QString& relation)
{
    return KuxXmlText::encodeName(relation).toLower() + QLatin1Char('_');
}
} // namespace

QDomDocument KuxXmlMementoFile::mementoToXml(const KuuMemento& memento)
{
    checkValid(memento);
    QDomDocument document;
    const QString name = KuxXmlText::encodeName(memento.getId().getRelation());
    QDomElement root = document.createElement(name);
    document.appendChild(root);
    saveMementoIntoDocument(document, root, memento);
    return document;
}

KuuMemento KuxXmlMementoFile::xmlToMemento(const QDomDocument& document)
{
    return readMementoFromDocument(document.documentElement());
}

QByteArray KuxXmlMementoFile::mementoToBytes(const KuuMemento& memento)
{
    checkValid(memento);
    KuxMementoXmlWriter writer;
    writeDocument(writer, memento);
    return writer.takeBytes();
}

KuuMemento KuxXmlMementoFile::bytesToMemento(const QByteArray& bytes, const QString& name)
{
    return readBytes(bytes.constData(), bytes.size(), name);
}

void KuxXmlMementoFile::saveMementoIntoDocument(QDomDocument& document, QDomElement& element,
                                                const KuuMemento& memento)
{
    checkValid(memento);
    KuxMementoDomSink sink(document, element);
    writeBody(sink, memento);
}

KuuMemento KuxXmlMementoFile::readMementoFromDocument(const QDomElement& element)
{
    KuxMementoDomCursor cursor(element);
    return readBody(cursor);
}

void KuxXmlMementoFile::saveValue(QDomDocument& document, QDomElement& element,
                                  const QVariant& value)
{
    KuxMementoDomSink sink(document, element);
    writeValue(sink, value, KuxXmlText::decodeName(element.tagName()));
}

QVariant KuxXmlMementoFile::readValue(const QDomElement& element)
{
    KuxMementoDomCursor cursor(element);
    return KuxMementoXmlRules::readValue(cursor);
}

QString KuxXmlMementoFile::getFileName(const KuuId& id)
{
    return QStringLiteral("%1%2.xml").arg(fileNamePrefix(id.getRelation()), id.getUuid());
}

void KuxXmlMementoFile::save(const QDir& directory, const KuuMemento& memento)
{
    save(filePath(directory, memento.getId()), memento);
}

void KuxXmlMementoFile::save(const QString& path, const KuuMemento& memento)
{
    checkValid(memento);
    KusSafeFile file(path);
    if (!file.open()) {
        KuxXmlFile::failOpening(file, path);
    }
    KuxMementoXmlWriter writer([&](const char* bytes, qint64 size) {
        if (!file.write(bytes, size)) {
            KuxXmlFile::failWriting(file, path);
        }
    });
    writeDocument(writer, memento);
    writer.finish();
    if (!file.commit()) {
        KuxXmlFile::failWriting(file, path);
    }
}

void KuxXmlMementoFile::save(const QDir& directory, const QList<KuuMemento>& mementos)
{
    // Nothing is put in place before every memento is written beside: one that cannot be written
    // leaves all files as they were.
    std::vector<KusSafeFile> files;
    files.reserve(size_t(mementos.size()));
    for (const KuuMemento& memento : mementos) {
        const QByteArray bytes = mementoToBytes(memento);
        const QString path = filePath(directory, memento.getId());
        files.emplace_back(path);
        KusSafeFile& file = files.back();
        if (!file.open()) {
            KuxXmlFile::failOpening(file, path);
        }
        // The target of a link may be on another file system, which the one flush does not reach.
        const bool isElsewhere = QFileInfo(path).isSymLink();
        if (!file.write(bytes) || (isElsewhere && !file.flush()) || !file.close()) {
            KuxXmlFile::failWriting(file, path);
        }
    }
    if (files.empty()) {
        return;
    }

    // One wait for the disk instead of one for each file.
    if (!KusSafeFile::flushFileSystem(directory.absolutePath())) {
        KuxXmlFile::failWriting(files.front(), directory.absolutePath());
    }
    for (int i = 0; i < mementos.size(); ++i) {
        files[size_t(i)].markFlushed();
        if (!files[size_t(i)].commit()) {
            KuxXmlFile::failWriting(files[size_t(i)], filePath(directory, mementos.at(i).getId()));
        }
    }
}

KuuMemento KuxXmlMementoFile::read(const QDir& directory, const KuuId& id)
{
    const QString path = filePath(directory, id);
    const KuuMemento memento = readFile(path);
    const QString& relation = memento.getId().getRelation();
    if (relation != id.getRelation()) {
        throw HbeUserError(QObject::tr("XML file '%1' is not valid.\nIts memento relation is '%2'.")
                               .arg(path, relation));
    }
    return memento;
}

KuuMemento KuxXmlMementoFile::read(const QString& path)
{
    return readFile(path);
}

QString KuxXmlMementoFile::peekText(const QDir& directory, const KuuId& id, const QString& key)
{
    QFile file(filePath(directory, id));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QXmlStreamReader xml(&file);
    xml.readNextStartElement();
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("fields")) {
            xml.skipCurrentElement();
            continue;
        }
        while (xml.readNextStartElement()) {
            if (xml.name() == key)
                return xml.readElementText();
            xml.skipCurrentElement();
        }
    }
    return QString();
}

QString KuxXmlMementoFile::getReason(const HbeError& error)
{
    const QString message = error.getMessage();
    const bool isOurs = dynamic_cast<const HbeProgrammingError*>(&error) != nullptr;
    const int end = isOurs ? message.indexOf(QLatin1String(":\n\n")) : -1;
    return end < 0 ? message : message.mid(end + 3);
}

int KuxXmlMementoFile::findUnwritable(const QString& text)
{
    return KuxXmlText::findForbidden(text);
}

bool KuxXmlMementoFile::exists(const QDir& directory, const KuuId& id)
{
    return QFileInfo(filePath(directory, id)).isFile();
}

void KuxXmlMementoFile::destroy(const QDir& directory, const KuuId& id)
{
    const QString path = filePath(directory, id);
    if (!KusFileUtils::removePath(path, true)) {
        throw HbeDiskError(QObject::tr("Cannot remove file '%1'.").arg(path));
    }
}

QList<KuuId> KuxXmlMementoFile::getIdList(const QDir& directory, const QString& relation)
{
    const QString prefix = fileNamePrefix(relation);
    const QString suffix = QStringLiteral(".xml");
    const QStringList names = QDir(directory.absolutePath())
                                  .entryList({prefix + QLatin1Char('*') + suffix},
                                             QDir::Files | QDir::Hidden | QDir::CaseSensitive);
    QList<KuuId> ids;
    for (const QString& name : names) {
        const int length = name.size() - prefix.size() - suffix.size();
        const KuuId id(relation, name.mid(prefix.size(), length));
        if (id.isValid()) {
            ids.append(id);
        }
    }
    return ids;
}
