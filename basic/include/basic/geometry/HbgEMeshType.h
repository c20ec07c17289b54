#pragma once

#include <basic/base/HbbAEnum.h>

/// What a mesh is made of: triangles, which form a surface, or tetrahedra, which fill a volume.
#define HBG_E_MESH_TYPE(ROW, Class)                                                                \
    ROW(Class, SURFACE, 0, QT_TRANSLATE_NOOP("HbgEMeshType", "Surface"))                           \
    ROW(Class, VOLUME, 1, QT_TRANSLATE_NOOP("HbgEMeshType", "Volume"))

class KELVANE_BASIC_EXPORT HbgEMeshType : public HbbAEnum
{
    HBB_ENUM(HbgEMeshType, HBG_E_MESH_TYPE)
};
