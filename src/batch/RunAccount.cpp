// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/RunAccount.h"

#include "batch/readerRules.h"
#include "framework/files/displayName.h"
#include "framework/strings.h"

#include <functional>

namespace quilvane {

namespace {

constexpr std::array<const char*, 4> kinds{ "PDF", "Word", "delimited", "text" };

constexpr std::array<const char*, 6> reasons{
    "of a kind that is not read",
    "PDF, which is read only where the file itself is picked or dropped",
    "Word files of other kinds in folders below, where only .docx is read",
    "lock files of open documents",
    "that could not be opened",
    "Word files that could not be read; a sample address stands for each in the list",
};

std::string files(std::size_t count)
{
    return Str(count) + (count == 1 ? " file" : " files");
}

const char* wasOrWere(std::size_t count)
{
    return count == 1 ? " was " : " were ";
}

std::string nameOf(std::string_view path)
{
    return displayPath(path.substr(path.rfind('/') + 1));
}

} // namespace

void RunAccount::met(const std::string& path)
{
    m_files.try_emplace(std::hash<std::string>{}(path));
}

void RunAccount::read(const std::string& path, FileReader reader)
{
    Fate& fate = m_files[std::hash<std::string>{}(path)];
    if (fate.isRead)
        return;
    if (fate.left)
        m_left[std::size_t(*fate.left)].remove(path);
    else
        ++m_settled;
    fate = { .isRead = true, .left = {} };
    ++m_read[std::size_t(reader)];
}

void RunAccount::left(const std::string& path, Left why)
{
    const auto file = m_files.find(std::hash<std::string>{}(path));
    if (file == m_files.end() || file->second.isRead || file->second.left)
        return;
    file->second.left = why;
    ++m_settled;
    m_left[std::size_t(why)].add(path);
}

void RunAccount::folderNotListed(const std::string& path)
{
    m_folders.add(path);
}

void RunAccount::Group::add(std::string_view path)
{
    constexpr std::size_t mostNames = 3;
    ++count;
    if (names.size() < mostNames)
        names.push_back(nameOf(path));
}

void RunAccount::Group::remove(std::string_view path)
{
    --count;
    std::erase(names, nameOf(path));
}

std::string RunAccount::Group::examples() const
{
    if (names.empty())
        return {};
    std::string text = " (";
    for (const std::string& name : names)
        text += (&name == &names.front() ? "" : ", ") + name;
    return text + (count > names.size() ? " and others)" : ")");
}

std::string RunAccount::text() const
{
    std::string text;
    if (!m_files.empty()) {
        std::size_t allRead = 0;
        std::string read;
        for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
            allRead += m_read[kind];
            if (m_read[kind] > 0)
                read += (read.empty() ? ": " : ", ") + Str(m_read[kind]) + " " + kinds[kind];
        }
        text = "Of " + files(m_files.size()) + " " + Str(allRead) + wasOrWere(allRead) + "read" + read + ".";
        for (std::size_t why = 0; why < reasons.size(); ++why) {
            const Group& group = m_left[why];
            if (group.count > 0)
                text += "\nNot read: " + Str(group.count) + " " + reasons[why] + group.examples() + ".";
        }
        if (m_settled < m_files.size())
            text += "\nNot reached: " + files(m_files.size() - m_settled) + ".";
    }
    if (m_folders.count > 0)
        text += std::string(text.empty() ? "" : "\n") + "Folders that could not be listed to their end: "
            + Str(m_folders.count) + m_folders.examples() + ".";
    return text;
}

} // namespace quilvane
