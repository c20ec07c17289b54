#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

/// Variants as text and back, for key/value files: `unserialize(serialize(v))` equals `v` and has
/// its type, for every type that QDataStream can carry. The text never holds a character that XML
/// cannot hold, nor is it white space only.
///
/// What people edit by hand is plain:
/// - a text stands as it is, a boolean as "true" or "false", an `int` in decimal, a `double` as the
///   shortest text that reads back exactly, always with a point or an exponent ("5.0");
/// - a text that would read as one of these, that begins with "@" or that is white space only gets
///   the prefix "@text:"; other numbers are "@uint:…", "@int64:…", "@uint64:…", "@float:…";
/// - the invalid variant is "@invalid"; anything else (also a text that XML cannot hold) is
///   "@variant:" and its Qt 5.15 data stream in base64.
///
/// The C locale throughout. Any thread may use it.
class KELVANE_UTIL_EXPORT KusSerializer
{
public:
    /// A value that QDataStream cannot carry is a programming error.
    static QString serialize(const QVariant& value);
    /// A text with a prefix whose rest makes no sense gives an invalid variant.
    static QVariant unserialize(const QString& text);
};
