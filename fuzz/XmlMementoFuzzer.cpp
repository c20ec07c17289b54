// Memento files: any bytes give a memento or a parse error; the streaming reader and the DOM agree;
// what was read writes itself, by both roads alike, and reads back the same.
#include "FuzzTarget.h"

#include <basic/error/HbeProgrammingError.h>
#include <util/xml/KuxXml.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <QtCore/QTextStream>
#include <QtXml/QDomDocument>

namespace
{
const QString NAME = QStringLiteral("fuzz");

bool readDom(const QByteArray& bytes, KuuMemento& memento)
{
    try {
        QDomDocument document;
        KuxXml::readXml(bytes, NAME, document);
        memento = KuxXmlMementoFile::xmlToMemento(document);
        return true;
    } catch (const HbeProgrammingError&) {
        return false;
    }
}

bool readStream(const QByteArray& bytes, KuuMemento& memento)
{
    try {
        memento = KuxXmlMementoFile::bytesToMemento(bytes, NAME);
        return true;
    } catch (const HbeProgrammingError&) {
        return false;
    }
}

QByteArray writeDom(const KuuMemento& memento)
{
    QByteArray bytes;
    QTextStream stream(&bytes);
    stream.setCodec("UTF-8");
    KuxXmlMementoFile::mementoToXml(memento).save(stream, KuxXml::getIndent(),
                                                  QDomNode::EncodingFromTextStream);
    stream.flush();
    return bytes;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    KuuMemento memento;
    KuuMemento fromDom;
    const bool ok = readStream(bytes, memento);
    if (ok != readDom(bytes, fromDom) || !(memento == fromDom))
        std::abort();
    if (!memento.isValid())
        return 0;

    const QByteArray written = KuxXmlMementoFile::mementoToBytes(memento);
    KuuMemento again;
    if (written != writeDom(memento) || !readStream(written, again) ||
        KuxXmlMementoFile::mementoToBytes(again) != written)
        std::abort();
    return 0;
}
