#include <basic/geometry/HbgMeshSet.h>

#include <basic/error/HbeProgrammingError.h>

HbgMeshSet::HbgMeshSet(const HbgEMeshType& type)
    : m_isVolume(type == HbgEMeshType::VOLUME)
{
}

HbgEMeshType HbgMeshSet::getType() const
{
    return m_isVolume ? HbgEMeshType::VOLUME : HbgEMeshType::SURFACE;
}

HbgBox HbgMeshSet::getBoundingBox() const
{
    HbgBox box;
    for (const HbgMesh& mesh : m_meshes)
        box.unite(mesh.getBoundingBox());
    return box;
}

const HbgMesh& HbgMeshSet::getMesh(int rank) const
{
    if (rank < 0 || rank >= getCount())
        HBE_PROGRAMMING_ERROR("geometry/HbgMeshSet", QStringLiteral("Mesh rank out of the set."));
    return m_meshes[rank];
}

bool HbgMeshSet::append(const HbgMesh& mesh)
{
    if (mesh.getType() != getType())
        return false;
    m_meshes.append(mesh);
    return true;
}

bool HbgMeshSet::update(int rank, const HbgMesh& mesh)
{
    if (rank < 0 || rank >= getCount() || mesh.getType() != getType())
        return false;
    m_meshes[rank] = mesh;
    return true;
}

bool HbgMeshSet::remove(int rank)
{
    if (rank < 0 || rank >= getCount())
        return false;
    m_meshes.remove(rank);
    return true;
}

void HbgMeshSet::clear()
{
    m_meshes.clear();
}

bool HbgMeshSet::operator==(const HbgMeshSet& other) const
{
    return m_isVolume == other.m_isVolume && m_meshes == other.m_meshes;
}
