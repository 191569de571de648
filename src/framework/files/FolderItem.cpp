// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/FolderItem.h"

#include "framework/files/TextInputStream.h"
#include "framework/files/TextOutputStream.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace quilvane {

namespace {

std::string joined(const std::string& folder, std::string_view name)
{
    std::string path = folder;
    if (!path.ends_with('/'))
        path += '/';
    return path += name;
}

} // namespace

FolderItem::FolderItem(std::string path)
    : m_path(std::move(path))
{
    while (m_path.size() > 1 && m_path.ends_with('/'))
        m_path.pop_back();
}

Ref<FolderItem> FolderItem::Child(std::string_view name) const
{
    const bool impossible = name.empty() || name == "." || name == ".."
        || name.find_first_of(std::string_view("/\0", 2)) != std::string_view::npos;
    if (impossible)
        return Ref<FolderItem>::nil('"' + displayPath(name) + "\" can't be the name of a file.");
    return Ref<FolderItem>::make(joined(m_path, name));
}

bool FolderItem::Exists() const
{
    std::error_code ignored;
    return std::filesystem::exists(m_path, ignored);
}

bool FolderItem::Directory() const
{
    std::error_code ignored;
    return std::filesystem::is_directory(m_path, ignored);
}

bool FolderItem::Alias() const
{
    std::error_code ignored;
    return std::filesystem::is_symlink(m_path, ignored);
}

FolderItem::Identity FolderItem::identity() const
{
    struct stat status { };
    if (::stat(m_path.c_str(), &status) != 0)
        return {};
    return { status.st_dev, status.st_ino };
}

std::string FolderItem::Name() const
{
    return m_path == "/" ? m_path : m_path.substr(m_path.rfind('/') + 1);
}

int FolderItem::Count() const
{
    return static_cast<int>(children().size());
}

Ref<FolderItem> FolderItem::Item(int index) const
{
    keepWindowPainted(); // whoever goes through a folder asks each item what it is
    const std::vector<std::string>& names = children();
    const auto position = static_cast<std::size_t>(index) - 1;
    if (index < 1 || position >= names.size())
        return Ref<FolderItem>::nil(
            "The folder \"" + displayPath(m_path) + "\" has no item number " + std::to_string(index) + ".");
    return Ref<FolderItem>::make(joined(m_path, names[position]));
}

void FolderItem::CreateAsFolder() const
{
    constexpr mode_t forAll = 0777; // the user's umask takes away what others are not to have
    if (::mkdir(m_path.c_str(), forAll) == 0)
        return;
    const int reason = errno;
    if (reason != EEXIST || !Directory())
        throw IOException::folderNotCreated(m_path, reason);
}

Ref<TextOutputStream> FolderItem::CreateTextFile() const
{
    return TextOutputStream::Create(*this);
}

Ref<TextInputStream> FolderItem::OpenAsTextFile() const
{
    return TextInputStream::Open(*this);
}

const std::vector<std::string>& FolderItem::children() const
{
    if (!std::exchange(m_listed, true)) {
        std::error_code failure;
        std::filesystem::directory_iterator entries(m_path, failure);
        for (; !failure && entries != std::filesystem::directory_iterator(); entries.increment(failure)) {
            m_children.push_back(entries->path().filename().native());
            keepWindowPainted();
        }
    }
    return m_children;
}

Ref<FolderItem> GetFolderItem(std::string_view path)
{
    if (path.find('\0') != std::string_view::npos)
        return Ref<FolderItem>::nil('"' + displayPath(path) + "\" can't be the path of a file.");
    if (path.starts_with('/'))
        return Ref<FolderItem>::make(std::string(path));
    // Where the current folder itself was removed the path stays relative, and whatever uses it says that it
    // is gone.
    std::error_code ignored;
    const std::string current = std::filesystem::current_path(ignored).native();
    return Ref<FolderItem>::make(path.empty() ? current : joined(current, path));
}

} // namespace quilvane
