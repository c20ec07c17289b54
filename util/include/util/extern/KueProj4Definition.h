#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

/// A PROJ.4 definition of a coordinate system: a text of parameters such as
/// "+proj=utm +zone=31 +datum=WGS84 +units=m +no_defs". A value; any thread.
///
/// Only the form is judged here; whether PROJ can make a coordinate system of it is known to
/// KuuCoordSystemService.
class KELVANE_UTIL_EXPORT KueProj4Definition
{
public:
    KueProj4Definition() = default;
    explicit KueProj4Definition(const QString& text);

    /// As given, without white space at both ends.
    QString getText() const { return m_text; }
    bool isEmpty() const { return m_text.isEmpty(); }
    /// It names a projection: a parameter "+proj=…" or "+init=…" with a value.
    bool isValid() const;

    /// The value of a parameter ("proj", "units"…), its first where it is repeated; empty for a
    /// flag and where it is missing.
    QString getParameter(const QString& name) const;
    bool hasParameter(const QString& name) const;

    /// One spelling for definitions that say the same: parameters sorted by name behind "+proj" or
    /// "+init", "+" put before each, numbers in their shortest form, later repetitions dropped
    /// (PROJ reads the first), "+type=crs", "+no_defs" and "+wktext" left out (they do not change
    /// the system).
    QString getNormalizedText() const;

    /// Compares the normalised texts.
    bool operator==(const KueProj4Definition& other) const;
    bool operator!=(const KueProj4Definition& other) const { return !(*this == other); }

private:
    QString m_text;
};
