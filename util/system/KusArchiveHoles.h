#pragma once

#include <QtCore/QtGlobal>

/// Where a file has no data on the disk, so that the holes of a sparse one need not be read: they
/// are NUL. Positions are asked for in ascending order. The descriptor is borrowed; its own
/// position moves.
class KusArchiveHoles
{
public:
    explicit KusArchiveHoles(int descriptor)
        : m_descriptor(descriptor)
    {
    }

    /// The bytes from here on that are a hole; 0 where there are data, at the end of the file, and
    /// where the file system does not tell.
    qint64 getSize(qint64 position);
    /// Whether there was a hole.
    bool wereFound() const { return m_wereFound; }

private:
    void look(qint64 position);

    int m_descriptor;
    qint64 m_dataBegin = 0; // of what was found last
    qint64 m_dataEnd = 0;
    bool m_wereFound = false;
};
