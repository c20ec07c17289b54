#include "KusTarRefusal.h"

#include <util/system/KusFileUtils.h>
#include <util/system/KusMemberPath.h>

#include <basic/error/HbeUserError.h>

namespace
{
QString shown(const QByteArray& name)
{
    return KusMemberPath::getShownText(name);
}

/// A message of the first line, and why.
[[noreturn]] void raise(const QString& message, const QString& reason)
{
    throw HbeUserError(reason.isEmpty() ? message : message + QLatin1Char('\n') + reason);
}
} // namespace

void KusTarRefusal::refuseStream(const QString& fault) const
{
    raise(tr("'%1' is not a valid archive file.").arg(m_path), fault);
}

void KusTarRefusal::refuseManyInvalid() const
{
    raise(tr("Corrupted archive file '%1' (more than 2 invalid records).").arg(m_path), QString());
}

void KusTarRefusal::refuseBlock(const QByteArray& name, qint64 offset) const
{
    raise(tr("Corrupted archive file '%1' (what stands at byte %2, '%3', is no header of a tar "
             "archive).")
              .arg(m_path, QString::number(offset), shown(name)),
          QString());
}

void KusTarRefusal::refuseMember(const QByteArray& name, qint64 offset, const QString& fault) const
{
    raise(tr("Cannot extract '%1' from archive file '%2': %3 (at byte %4).")
              .arg(shown(name), m_path, fault, QString::number(offset)),
          QString());
}

void KusTarRefusal::refuseKind(const QByteArray& name, qint64 offset, char typeFlag) const
{
    switch (typeFlag) {
    case '1':
        refuseMember(name, offset, tr("it is a hard link; links are never written"));
    case '2':
        refuseMember(name, offset, tr("it is a symbolic link; links are never written"));
    case '3':
    case '4':
        refuseMember(name, offset, tr("it is a device; devices are never written"));
    case '6':
        refuseMember(name, offset, tr("it is a pipe; pipes are never written"));
    case 'S':
        refuseMember(name, offset, tr("it is a sparse file; sparse files are not read"));
    case 'M':
        refuseMember(name, offset, tr("it continues a file of another volume"));
    case 'V':
        refuseMember(name, offset, tr("it is the header of a volume"));
    default:
        refuseMember(name, offset,
                     tr("it is of a kind that is not read, 0x%1")
                         .arg(static_cast<unsigned char>(typeFlag), 2, 16, QLatin1Char('0')));
    }
}

void KusTarRefusal::refuseData(const QByteArray& name, const QString& fault) const
{
    raise(
        tr("Cannot extract '%1' because archive file '%2' is corrupted.").arg(shown(name), m_path),
        fault);
}

void KusTarRefusal::refuseCut(const QByteArray& name, qint64 offset) const
{
    refuseData(name, tr("The archive ends at byte %1, within its data.").arg(offset));
}

void KusTarRefusal::refuseCutHeader(qint64 offset) const
{
    raise(tr("Corrupted archive file '%1' (it ends at byte %2, within a header).")
              .arg(m_path, QString::number(offset)),
          QString());
}

void KusTarRefusal::refuseLimit(qint64 limit, const QByteArray& name, qint64 offset,
                                qint64 size) const
{
    refuseBeyond(describeLimit(limit), name, offset, size);
}

void KusTarRefusal::refuseEndLimit(qint64 limit, qint64 offset) const
{
    raise(describeLimit(limit),
          tr("What follows its last member goes beyond it at byte %1.").arg(offset));
}

QString KusTarRefusal::describeLimit(qint64 limit) const
{
    return tr("Archive file '%1' holds more than the %2 that are allowed.")
        .arg(m_path, KusFileUtils::getStringSize(limit));
}

void KusTarRefusal::refuseAnnounced(qint64 announced, const QByteArray& name, qint64 offset,
                                    qint64 size) const
{
    refuseBeyond(tr("Archive file '%1' holds more than the %2 that it announces.")
                     .arg(m_path, KusFileUtils::getStringSize(announced)),
                 name, offset, size);
}

void KusTarRefusal::refuseBeyond(const QString& message, const QByteArray& name, qint64 offset,
                                 qint64 size) const
{
    raise(message,
          tr("'%1', at byte %2 and of %3, goes beyond it.")
              .arg(shown(name), QString::number(offset), KusFileUtils::getStringSize(size)));
}

void KusTarRefusal::refuseDecoding(const QByteArray& name, const QString& fault) const
{
    raise(tr("Cannot decode extended information '%1' because archive file '%2' is corrupted.")
              .arg(shown(name), m_path),
          fault);
}

void KusTarRefusal::refuseLoneExtension(const QByteArray& name, qint64 offset) const
{
    raise(tr("Corrupted archive file '%1' (it ends at byte %2, before the member of extended "
             "information '%3').")
              .arg(m_path, QString::number(offset), shown(name)),
          QString());
}

QString KusTarRefusal::describeSize(qint64 size, qint64 most)
{
    return tr("It has %1; at most %2 are allowed.")
        .arg(KusFileUtils::getStringSize(size), KusFileUtils::getStringSize(most));
}
