#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QList>

/// A class that is written to binary streams and read back, in versions.
///
/// A record is a header (mark, version, length of the payload, checksum) and the payload, which the
/// class writes with QDataStream (format of Qt 5.15, big endian, double precision, whatever the
/// settings of the stream that is passed). Versions are date-like integers such as 200928.
///
/// Reading gives the strong guarantee: on any error the object is as it was. A record that is
/// truncated, foreign, damaged, newer or of an unknown version is refused before the object is
/// touched, because the header is checked against the whole payload first. Should the class itself
/// fail while it reads the payload, or leave a part of it unread, the object is read back from a
/// copy of its former state (written in the current version), so that a class need not take care.
/// Refusals are HbeError.
///
/// Objects nest: `_serialize` may call `serialize` of its members.
class KELVANE_BASIC_EXPORT HbbASerializable
{
public:
    virtual ~HbbASerializable();

    /// Writes one record in the current version.
    void serialize(QDataStream& stream) const;
    /// Reads one record, and nothing beyond it.
    void unserialize(QDataStream& stream);

    QByteArray toByteArray() const;
    /// The bytes hold one record and nothing else.
    void fromByteArray(const QByteArray& bytes);

protected:
    HbbASerializable() = default;
    HbbASerializable(const HbbASerializable&) = default;
    HbbASerializable& operator=(const HbbASerializable&) = default;

    /// The versions that can be read, in ascending order.
    virtual QList<int> _serializedVersions() const = 0;
    /// The version that is written: one of the above.
    virtual int _currentSerializedVersion() const = 0;
    virtual void _serialize(QDataStream& stream) const = 0;
    /// Reads what `_serialize` of that version wrote. The status of the stream is checked by the
    /// caller; values out of range are the class's to refuse, with HbeError.
    virtual void _unserialize(QDataStream& stream, int version) = 0;

    /// Whether the class wrote its version from the first one on. When it did not, a stream without
    /// a header is read in the first of the versions; the object is restored on errors, but the
    /// place in the stream is not.
    virtual bool _hasValidFirstVersion() const { return true; }

    /// For `_unserialize`: reads the item count of a list and refuses one that is negative or that
    /// what is left of the stream cannot hold, so that a damaged count reserves no memory.
    static int readCount(QDataStream& stream, int minimumItemBytes);

private:
    QByteArray payload() const;
    void readRecord(QDataStream& stream, bool alone);
    void readPayload(QDataStream& stream, int version, bool toTheEnd);
    void checkVersion(int version) const;
};
