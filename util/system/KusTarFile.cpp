#include <util/system/KusTarFile.h>

#include <unordered_map>
#include <vector>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

namespace
{
constexpr std::size_t ENTRY_BYTES = 1 << 14; // of the user database

/// `lookUp` is getpwuid_r or getgrgid_r; looking up each file's owner again would ask a network.
template <class Entry, class Id, class LookUp>
QByteArray getName(Id id, LookUp lookUp, char* Entry::*name)
{
    thread_local std::unordered_map<Id, QByteArray> known;
    const auto found = known.find(id);
    if (found != known.end())
        return found->second;
    std::vector<char> memory(ENTRY_BYTES);
    Entry entry{};
    Entry* result = nullptr;
    const bool isKnown =
        lookUp(id, &entry, memory.data(), memory.size(), &result) == 0 && result != nullptr;
    return known[id] = isKnown ? QByteArray(entry.*name) : QByteArray();
}
} // namespace

KusTarFile KusTarFile::fromSystem(const QByteArray& name, const struct stat& facts)
{
    KusTarFile file;
    file.name = name;
    file.isDirectory = S_ISDIR(facts.st_mode);
    file.permissionBits = facts.st_mode & 0777;
    file.ownerId = facts.st_uid;
    file.groupId = facts.st_gid;
    file.ownerName = getName(facts.st_uid, &getpwuid_r, &passwd::pw_name);
    file.groupName = getName(facts.st_gid, &getgrgid_r, &group::gr_name);
    file.size = file.isDirectory ? 0 : facts.st_size;
    file.modifSeconds = facts.st_mtime;
    return file;
}
