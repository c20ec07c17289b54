#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>

class KusTarRecord;

/// Raises the errors of a tar stream that cannot be read on, each a HbeUserError that names the
/// archive, the member, its place and the fault. Names are those of members, offsets are bytes of
/// the stream.
class KusTarRefusal
{
    Q_DECLARE_TR_FUNCTIONS(KusTarRefusal)

public:
    explicit KusTarRefusal(const QString& archivePath)
        : m_path(archivePath)
    {
    }

    /// A stream that does not begin as one of tar.
    [[noreturn]] void refuseStream(const QString& fault) const;
    [[noreturn]] void refuseManyInvalid() const;
    /// A block that is no header.
    [[noreturn]] void refuseBlock(const QByteArray& name, qint64 offset) const;
    [[noreturn]] void refuseMember(const QByteArray& name, qint64 offset,
                                   const QString& fault) const;
    /// A member of a kind that is not read.
    [[noreturn]] void refuseKind(const QByteArray& name, qint64 offset, char typeFlag) const;
    /// A member whose data are not what they must be.
    [[noreturn]] void refuseData(const QByteArray& name, const QString& fault) const;
    [[noreturn]] void refuseCut(const QByteArray& name, qint64 offset) const;
    [[noreturn]] void refuseCutHeader(qint64 offset) const;
    /// More bytes than are allowed, or than the archive announces.
    [[noreturn]] void refuseLimit(qint64 limit, const QByteArray& name, qint64 offset,
                                  qint64 size) const;
    [[noreturn]] void refuseAnnounced(qint64 announced, const QByteArray& name, qint64 offset,
                                      qint64 size) const;
    /// More bytes than are allowed, in what follows the last member.
    [[noreturn]] void refuseEndLimit(qint64 limit, qint64 offset) const;
    /// Extended information; the fault may be empty.
    [[noreturn]] void refuseDecoding(const QByteArray& name, const QString& fault) const;
    [[noreturn]] void refuseLoneExtension(const QByteArray& name, qint64 offset) const;

    /// "It has 3 GiB; at most 1 MiB are allowed."
    static QString describeSize(qint64 size, qint64 most);

private:
    [[noreturn]] void refuseBeyond(const QString& message, const QByteArray& name, qint64 offset,
                                   qint64 size) const;
    QString describeLimit(qint64 limit) const;

    const QString m_path;
};
