// The usual sets of flags.
#include <basic/data/HbdCompoundTypeFlags.h>
#include <basic/data/HbdSupportFlags.h>
#include <basic/data/HbdVarRoleFlags.h>
#include <basic/data/HbdVarTypeFlags.h>

namespace
{
constexpr quint64 ALL = ~quint64(0);

// Bits from the enumerators rather than from the items: these constants are made at compile time,
// so that other constants may be made of them in any order of loading.
template <class... Values>
constexpr quint64 bits(Values... values)
{
    return ((quint64(1) << values) | ...);
}
} // namespace

using Type = HbdEVarType;
using Role = HbdEVarRole;

const HbdVarTypeFlags HbdVarTypeFlags::NONE{};
const HbdVarTypeFlags HbdVarTypeFlags::ANY(ALL);
const HbdVarTypeFlags HbdVarTypeFlags::NUMERIC(bits(Type::E_REAL, Type::E_REAL_32,
                                                    Type::E_INTEGER));
const HbdVarTypeFlags HbdVarTypeFlags::NUMERIC_ENUM(bits(Type::E_REAL, Type::E_REAL_32,
                                                         Type::E_INTEGER, Type::E_CATEGORY));

const HbdVarRoleFlags HbdVarRoleFlags::NONE{};
const HbdVarRoleFlags HbdVarRoleFlags::ANY(ALL);
const HbdVarRoleFlags HbdVarRoleFlags::COORDINATES(bits(Role::E_X_COORDINATE, Role::E_Y_COORDINATE,
                                                        Role::E_Z_COORDINATE));
const HbdVarRoleFlags HbdVarRoleFlags::IDENTIFIERS(bits(Role::E_SAMPLE_ID, Role::E_OBJECT_ID));
const HbdVarRoleFlags HbdVarRoleFlags::INDICES(bits(Role::E_CELL_INDEX, Role::E_X_INDEX,
                                                    Role::E_Y_INDEX, Role::E_Z_INDEX));

const HbdSupportFlags HbdSupportFlags::NONE{};
const HbdSupportFlags HbdSupportFlags::ANY(ALL);

const HbdCompoundTypeFlags HbdCompoundTypeFlags::NONE{};
const HbdCompoundTypeFlags HbdCompoundTypeFlags::ANY(ALL);
