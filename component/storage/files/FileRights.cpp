#include "component/storage/files/FileRights.h"

#include "base/TemporaryFile.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

namespace {

/// The names of a file's extended attributes, an access list among them.
std::vector<std::string> AttributesOf(const std::filesystem::path& file) {
    std::vector<char> list(4096);
    ssize_t size = llistxattr(file.c_str(), list.data(), list.size());
    for (; size < 0 && errno == ERANGE && list.size() < (std::size_t{1} << 20);
         size = llistxattr(file.c_str(), list.data(), list.size()))
        list.resize(list.size() * 2);
    std::vector<std::string> names;
    for (auto at = list.begin(); size > 0 && at < list.begin() + size;
         at += static_cast<std::ptrdiff_t>(names.back().size()) + 1)
        names.emplace_back(&*at);
    return names;
}

/// What the system does not let a user carry over (a security label, say), it gives to the new file itself.
void CopyAttributes(int descriptor, const std::filesystem::path& other, bool withAccessList) {
    std::vector<char> value(std::size_t{64} << 10); // no system knows a larger one
    for (const std::string& name : AttributesOf(other)) {
        if (!withAccessList && name.starts_with("system."))
            continue;
        const ssize_t size = lgetxattr(other.c_str(), name.c_str(), value.data(), value.size());
        if (size >= 0)
            fsetxattr(descriptor, name.c_str(), value.data(), static_cast<std::size_t>(size), 0);
    }
}

/// A file system that knows no modes, as many of foreign kinds, keeps the one it has for all files.
void SetMode(int descriptor, mode_t mode) {
    [[maybe_unused]] const int ignored = fchmod(descriptor, mode);
}

/// The group's rights cut down to those of all others.
mode_t WithoutGroup(mode_t mode) {
    return (mode & ~mode_t{070}) | (mode & ((mode & mode_t{07}) << 3U));
}

bool IsInGroup(gid_t group) {
    if (group == getegid())
        return true;
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
    const int count = getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(0, count)));
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

} // namespace

void CopyRights(int descriptor, const std::filesystem::path& other) {
    struct stat wanted {};
    struct stat given {};
    if (stat(other.c_str(), &wanted) != 0) {
        SetMode(descriptor, UsualMode());
        return;
    }
    // The owner can be kept only by a privileged user, the group by its members.
    int failed = fchown(descriptor, wanted.st_uid, wanted.st_gid);
    if (failed != 0)
        failed = fchown(descriptor, static_cast<uid_t>(-1), wanted.st_gid);
    const bool hasGroup = failed == 0 || (fstat(descriptor, &given) == 0 && given.st_gid == wanted.st_gid);
    const mode_t mode = wanted.st_mode & 07777;
    SetMode(descriptor, hasGroup ? mode : WithoutGroup(mode));
    CopyAttributes(descriptor, other, hasGroup);
}

bool CanKeepOwnerAndGroup(const std::filesystem::path& other) {
    struct stat wanted {};
    if (geteuid() == 0 || stat(other.c_str(), &wanted) != 0)
        return true;
    return wanted.st_uid == geteuid() && IsInGroup(wanted.st_gid);
}
