// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/availableMemory.h"

#include "framework/exceptions.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>

namespace quilvane {

namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t mebibyte = std::uint64_t(1) << 20;
/// Up to this size no check is made.
constexpr std::uint64_t small = 16 * mebibyte;
/// Left to the rest of the program.
constexpr std::uint64_t reserve = 64 * mebibyte;

std::string inMebibytes(std::uint64_t bytes)
{
    std::array<char, 32> text{};
    std::snprintf(
        text.data(), text.size(), "%.0f MiB", static_cast<double>(bytes) / static_cast<double>(mebibyte));
    return text.data();
}

/// The number after `key` in a file of lines "key number"; nothing if it is not there.
std::optional<std::uint64_t> field(const std::string& path, const std::string& key)
{
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::string name;
        std::uint64_t number = 0;
        if (words >> name >> number && name == key)
            return number;
    }
    return std::nullopt;
}

/// A file that holds one number; nothing for "max" and for a file that is not there.
std::optional<std::uint64_t> number(const std::string& path)
{
    std::ifstream file(path);
    std::uint64_t value = 0;
    if (file >> value)
        return value;
    return std::nullopt;
}

/// The names of the files in the two versions of control groups.
struct GroupFiles {
    const char* mount;
    const char* limit;
    const char* usage;
    std::array<const char*, 2>
        cache; // lines of memory.stat: pages that the kernel frees before it kills a process
};

constexpr GroupFiles version1 = { "/sys/fs/cgroup/memory", "/memory.limit_in_bytes", "/memory.usage_in_bytes",
    { "total_inactive_file", "total_active_file" } };
constexpr GroupFiles version2
    = { "/sys/fs/cgroup", "/memory.max", "/memory.current", { "inactive_file", "active_file" } };

std::uint64_t leftInGroup(const std::string& folder, const GroupFiles& files)
{
    const auto limit = number(folder + files.limit);
    if (!limit)
        return unlimited;
    std::uint64_t used = number(folder + files.usage).value_or(0);
    for (const char* cache : files.cache)
        used -= std::min(used, field(folder + "/memory.stat", cache).value_or(0));
    return *limit - std::min(*limit, used);
}

/// A limit of a group also applies to all groups below it, so the smallest one counts. In a container the
/// group's own path often does not exist, and its limits are at the mount itself. So both are read.
std::uint64_t leftInGroupAndParents(const std::string& root, std::string group, const GroupFiles& files)
{
    const std::string mount = root + files.mount;
    std::uint64_t left = leftInGroup(mount, files);
    while (group.size() > 1) {
        left = std::min(left, leftInGroup(mount + group, files));
        group.erase(group.rfind('/'));
    }
    return left;
}

} // namespace

std::uint64_t availableMemory(const std::string& root)
{
    constexpr std::uint64_t kibibyte = 1024;
    std::uint64_t available = unlimited;
    if (const auto free = field(root + "/proc/meminfo", "MemAvailable:"))
        available = *free * kibibyte;

    // Each line is "number:controllers:/path"; version 2 has number 0 and no controllers.
    std::ifstream groups(root + "/proc/self/cgroup");
    std::string line;
    while (std::getline(groups, line)) {
        std::istringstream fields(line);
        std::string hierarchy, controllers, path;
        if (!std::getline(fields, hierarchy, ':') || !std::getline(fields, controllers, ':')
            || !std::getline(fields, path) || !path.starts_with('/'))
            continue;
        if (hierarchy == "0")
            available = std::min(available, leftInGroupAndParents(root, path, version2));
        else if (controllers.find("memory") != std::string::npos)
            available = std::min(available, leftInGroupAndParents(root, path, version1));
    }
    return available;
}

void requireMemory(std::uint64_t bytes, const std::string& what)
{
    if (bytes <= small)
        return;
    const std::uint64_t available = availableMemory();
    if (bytes > available - std::min(available, reserve))
        throw OutOfMemoryException(what + ": " + inMebibytes(bytes) + " are needed, and "
            + inMebibytes(available) + " of memory are free.");
}

} // namespace quilvane
