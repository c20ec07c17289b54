#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/// Patterns that choose members of an archive by name.
///
/// A pattern matches one or more whole elements of a name, that stand anywhere in it: "*.tmp",
/// "cache", "report/*.txt". "*" and "?" stay inside of an element, "**" spans several, "[a-z]" is a
/// set. With "/" in front, the pattern begins at the first element. Below a directory that matches
/// everything does.
class KELVANE_UTIL_EXPORT KusMemberPatterns
{
public:
    KusMemberPatterns() = default;
    /// A pattern that makes no sense, such as an empty one, is a HbeUserError.
    explicit KusMemberPatterns(const QStringList& patterns);

    bool isEmpty() const { return m_expressions.isEmpty(); }
    /// Whether a pattern matches the name, or a directory above it.
    bool matches(const QByteArray& name) const;
    /// The same; notes which patterns matched, for `getUnused`.
    bool matchesAndNotes(const QByteArray& name);
    /// The patterns that never matched.
    QStringList getUnused() const;

private:
    QStringList m_patterns;
    QVector<QRegularExpression> m_expressions;
    QVector<bool> m_used;
};
