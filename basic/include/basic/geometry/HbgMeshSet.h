#pragma once

#include <basic/geometry/HbgMesh.h>

/// Meshes of one type, addressed by rank. A value with shared contents; any thread.
class KELVANE_BASIC_EXPORT HbgMeshSet
{
public:
    explicit HbgMeshSet(const HbgEMeshType& type = HbgEMeshType::SURFACE);

    HbgEMeshType getType() const;
    int getCount() const { return m_meshes.size(); }
    bool isEmpty() const { return m_meshes.isEmpty(); }
    HbgBox getBoundingBox() const;

    /// A rank outside is a programming error.
    const HbgMesh& getMesh(int rank) const;
    const QVector<HbgMesh>& getMeshes() const { return m_meshes; }

    /// False, and no change, for a mesh of the other type and for a rank outside.
    bool append(const HbgMesh& mesh);
    bool update(int rank, const HbgMesh& mesh);
    bool remove(int rank); ///< moves all that follow
    void clear();

    bool operator==(const HbgMeshSet& other) const;
    bool operator!=(const HbgMeshSet& other) const { return !(*this == other); }

private:
    QVector<HbgMesh> m_meshes;
    bool m_isVolume;
};
