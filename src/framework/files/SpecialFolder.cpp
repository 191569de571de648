// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/SpecialFolder.h"

#include "framework/exceptions.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// The value of an environment variable if it is an absolute path; the XDG rules ask to ignore any other.
std::string absolutePathFrom(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && value[0] == '/' ? value : "";
}

std::string homeFolder()
{
    std::string home = absolutePathFrom("HOME");
    if (!home.empty())
        return home;
    std::array<char, 16384> texts;
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, texts.data(), texts.size(), &found) == 0 && found && found->pw_dir)
        return found->pw_dir;
    throw IOException("Your home folder could not be found, so there is no place to keep settings in.");
}

/// Makes the folder and all above it that are missing.
void makePrivateFolder(const std::string& path)
{
    constexpr mode_t forThisUser = 0700;
    for (std::size_t end = 0; end != std::string::npos;) {
        end = path.find('/', end + 1);
        const std::string part = path.substr(0, end);
        if (::mkdir(part.c_str(), forThisUser) == 0)
            continue;
        const int reason = errno;
        if (!FolderItem(part).Directory())
            throw IOException::folderNotCreated(part, reason);
    }
}

} // namespace

Ref<FolderItem> SpecialFolder::ApplicationData()
{
    std::string path = absolutePathFrom("XDG_DATA_HOME");
    if (path.empty())
        path = homeFolder() + "/.local/share";
    makePrivateFolder(path);
    return GetFolderItem(path);
}

} // namespace quilvane
