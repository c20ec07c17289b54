#pragma once

#include <QtCore/QByteArray>

/// What the extension records before a member say of it. Where they say a thing twice, the later
/// one holds; an empty name is none.
struct KusTarExtension {
    bool isPresent = false;
    bool hasRightChecksums = true;
    QByteArray name;
    qint64 size = -1; ///< -1: that of the header
    bool isSparse = false;

    // All take the data of a record; false when they cannot be decoded.

    /// Of a pax record, the name alone.
    bool takePath(const QByteArray& data);
    /// Of a pax record, all that other tools write.
    bool takePax(const QByteArray& data);
    /// A GNU long name.
    void takeLongName(const QByteArray& data);
};
