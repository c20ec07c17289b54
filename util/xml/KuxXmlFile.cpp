#include "KuxXmlFile.h"

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>
#include <util/system/KusSafeFile.h>

#include <QtCore/QFileInfo>
#include <QtCore/QObject>

namespace
{
constexpr qint64 MAPPED_SIZE = 64 * 1024 * 1024;
const QLatin1String LEGACY_NAME("Itz");

void explain(const KusSafeFile& file, const QString& path)
{
    HbbDebug::printWarning(QStringLiteral("%1: %2").arg(path, file.getErrorString()));
}
} // namespace

KuxXmlFile::KuxXmlFile(const QString& path)
    : m_file(path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        throw HbeUserError(QObject::tr("Cannot find XML file '%1'.").arg(path));
    }
    if (info.isDir() || !m_file.open(QIODevice::ReadOnly)) {
        throw HbeError(QObject::tr("Cannot open XML file '%1' for reading.").arg(path));
    }

    // A pipe or a device has no size: it is read to its end.
    m_size = m_file.size();
    if (m_size > MAPPED_SIZE) {
        m_begin = reinterpret_cast<const char*>(m_file.map(0, m_size));
    }
    if (!m_begin) {
        m_bytes = m_file.readAll();
        if (m_file.error() != QFileDevice::NoError) {
            throw HbeError(QObject::tr("Cannot open XML file '%1' for reading.").arg(path));
        }
        if (info.fileName() == LEGACY_NAME) {
            repairLegacy(path);
        }
        m_begin = m_bytes.constData();
        m_size = m_bytes.size();
    }
}

// Projects of a former version hold a file of this name with a bell where the section sign was
// meant. Every other file is parsed as it is. The side file is what is parsed; it is deleted when
// parsing succeeds, and stays for inspection when not.
void KuxXmlFile::repairLegacy(const QString& path)
{
    QString text = QString::fromUtf8(m_bytes);
    text.replace(QChar(0x07), QChar(0xA7));
    m_bytes = text.toUtf8();
    QFile side(path + QLatin1String(".patched"));
    if (!side.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        side.write(m_bytes) != m_bytes.size() || !side.flush()) {
        throw HbeError(QObject::tr("Cannot open XML file '%1' for writing.").arg(side.fileName()));
    }
}

void KuxXmlFile::write(const QString& path, const QByteArray& bytes)
{
    KusSafeFile file(path);
    if (!file.open()) {
        failOpening(file, path);
    }
    if (!file.write(bytes) || !file.commit()) {
        failWriting(file, path);
    }
}

void KuxXmlFile::failOpening(const KusSafeFile& file, const QString& path)
{
    explain(file, path);
    throw HbeError(QObject::tr("Cannot create or open for writing the XML file '%1'.").arg(path));
}

void KuxXmlFile::failWriting(const KusSafeFile& file, const QString& path)
{
    explain(file, path);
    throw HbeDiskError(QObject::tr("Cannot write/flush XML file into '%1'.").arg(path));
}
