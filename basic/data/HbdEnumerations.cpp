// The enumerations that describe variables: their tables stand in their headers.
#include <basic/data/HbdEComponentRole.h>
#include <basic/data/HbdECompoundType.h>
#include <basic/data/HbdESupport.h>
#include <basic/data/HbdEVarRole.h>
#include <basic/data/HbdEVarType.h>

HBB_ENUM_DEFINE(HbdEVarType, HBD_E_VAR_TYPE, REAL, "data/HbdEVarType")
HBB_ENUM_DEFINE(HbdEVarRole, HBD_E_VAR_ROLE, NONE, "data/HbdEVarRole")
HBB_ENUM_DEFINE(HbdESupport, HBD_E_SUPPORT, NONE, "data/HbdESupport")
HBB_ENUM_DEFINE(HbdECompoundType, HBD_E_COMPOUND_TYPE, NONE, "data/HbdECompoundType")
HBB_ENUM_DEFINE(HbdEComponentRole, HBD_E_COMPONENT_ROLE, NONE, "data/HbdEComponentRole")
