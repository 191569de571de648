// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/FolderItem.h"

#include "framework/exceptions.h"
#include "framework/files/TextInputStream.h"
#include "framework/files/TextOutputStream.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"

#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include <dirent.h>
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

FolderItem::Kind kindOf(const dirent& entry)
{
    switch (entry.d_type) {
    case DT_DIR:
        return FolderItem::Kind::Folder;
    case DT_LNK:
        return FolderItem::Kind::Link;
    case DT_UNKNOWN: // some file systems never tell
        return FolderItem::Kind::Unknown;
    default:
        return FolderItem::Kind::Other;
    }
}

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

} // namespace

FolderItem::FolderItem(std::string path)
    : m_path(std::move(path))
{
    while (m_path.size() > 1 && m_path.ends_with('/'))
        m_path.pop_back();
}

FolderItem::FolderItem(std::string path, OpenedFile opened)
    : FolderItem(std::move(path))
{
    m_opened = std::move(opened);
}

FolderItem::FolderItem(std::string path, Kind kind)
    : FolderItem(std::move(path))
{
    m_kind = kind;
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
    if (m_kind == Kind::Folder || m_kind == Kind::Other)
        return m_kind == Kind::Folder;
    std::error_code ignored;
    return std::filesystem::is_directory(m_path, ignored);
}

bool FolderItem::Alias() const
{
    if (m_kind != Kind::Unknown)
        return m_kind == Kind::Link;
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
    keepWindowPainted(); // a walk through a folder calls this for each child
    const std::vector<ListedChild>& all = children();
    const auto position = static_cast<std::size_t>(index) - 1;
    if (index < 1 || position >= all.size())
        return Ref<FolderItem>::nil(
            "The folder \"" + displayPath(m_path) + "\" has no item number " + std::to_string(index) + ".");
    return Ref<FolderItem>::make(joined(m_path, all[position].name), all[position].kind);
}

const std::string& FolderItem::whyNotListed() const
{
    children();
    return m_whyNotListed;
}

void FolderItem::CreateAsFolder() const
{
    constexpr mode_t forAll = 0777; // the user's umask removes what others must not have
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

OpenedFile FolderItem::openToRead() const
{
    if (!m_opened)
        return OpenedFile::open(m_path);
    OpenedFile opened = std::move(*m_opened);
    m_opened.reset();
    return opened;
}

const std::vector<FolderItem::ListedChild>& FolderItem::children() const
{
    if (std::exchange(m_listed, true))
        return m_children;
    errno = 0;
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(m_path.c_str()));
    // readdir reports failures only by errno, so it is set to 0 before each call.
    for (const dirent* entry = nullptr; folder && (entry = ::readdir(folder.get())) != nullptr; errno = 0) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            m_children.push_back({ std::string(name), kindOf(*entry) });
        keepWindowPainted();
    }
    if (errno != 0)
        m_whyNotListed = IOException::folderNotListed(m_path, errno).what();
    return m_children;
}

Ref<FolderItem> itemAt(std::string_view path)
{
    if (path.find('\0') != std::string_view::npos)
        return Ref<FolderItem>::nil('"' + displayPath(path) + "\" can't be the path of a file.");
    if (path.starts_with('/'))
        return Ref<FolderItem>::make(std::string(path));
    // If the current folder was removed, the path stays relative, and its use fails with a reason.
    std::error_code ignored;
    const std::string current = std::filesystem::current_path(ignored).native();
    return Ref<FolderItem>::make(path.empty() ? current : joined(current, path));
}

Ref<FolderItem> GetFolderItem(std::string_view path)
{
    Ref<FolderItem> item = itemAt(path);
    struct stat status { };
    if (item && ::lstat(item->NativePath().c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR))
        return Ref<FolderItem>::nil(IOException(item->NativePath(), "opened", errno).what());
    return item;
}

} // namespace quilvane
