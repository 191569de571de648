// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TempFolder.h"

#include "framework/exceptions.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/FolderItem.h"
#include "framework/files/SpecialFolder.h"
#include "framework/files/TextInputStream.h"
#include "framework/files/TextOutputStream.h"
#include "framework/files/availableMemory.h"
#include "framework/files/displayName.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// What a nil reference says when it is followed.
template <typename T>
std::string whyNil(const Ref<T>& reference)
{
    try {
        static_cast<void>(*reference);
    } catch (const NilObjectException& error) {
        return error.what();
    }
    return "not nil";
}

mode_t permissionsOf(const std::string& path)
{
    struct stat status { };
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

/// Makes every write beyond `bytes` of a file fail with EFBIG, as a full disk does with ENOSPC.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_signalBefore(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limited{ bytes, m_before.rlim_max };
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signalBefore);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
    void (*m_signalBefore)(int);
};

/// To root, as which tests may run, nothing is forbidden; so root becomes somebody else for a while.
class AsNobody {
public:
    AsNobody()
    {
        constexpr uid_t nobody = 65534;
        if (m_before == 0 && ::seteuid(nobody) != 0)
            throw std::runtime_error("root could not become nobody");
    }
    ~AsNobody() { static_cast<void>(::seteuid(m_before)); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    const uid_t m_before = ::geteuid();
};

class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value)
        : m_name(name)
    {
        if (const char* before = std::getenv(name))
            m_before = before;
        set(value);
    }
    ~EnvironmentVariable() { set(m_before ? m_before->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void set(const char* value) { value ? ::setenv(m_name, value, 1) : ::unsetenv(m_name); }

    const char* m_name;
    std::optional<std::string> m_before;
};

class Files : public testing::Test {
protected:
    Ref<FolderItem> item(std::string_view name) const { return GetFolderItem(folder / name); }

    TempFolder folder;
};

TEST_F(Files, PathsBecomeAbsoluteAndLoseTrailingSlashes)
{
    const std::string current = std::filesystem::current_path().native();
    EXPECT_EQ(GetFolderItem("")->NativePath(), current);
    EXPECT_EQ(GetFolderItem("a b")->NativePath(), (std::filesystem::path(current) / "a b").native());
    EXPECT_EQ(GetFolderItem("/a/b//")->NativePath(), "/a/b");
    EXPECT_EQ(GetFolderItem("/a/b/")->Name(), "b");
    EXPECT_EQ(GetFolderItem("/")->Name(), "/");
    EXPECT_EQ(GetFolderItem("/")->Child("x")->NativePath(), "/x");
    EXPECT_FALSE(GetFolderItem(std::string_view("/a\0b", 4)));
}

TEST_F(Files, ChildRefusesWhatIsNoName)
{
    const auto parent = GetFolderItem(folder.path());
    EXPECT_EQ(parent->Child("new\nline")->Name(), "new\nline");
    EXPECT_FALSE(parent->Child("new\nline")->Exists());
    for (const std::string_view name : { std::string_view(""), std::string_view("."), std::string_view(".."),
             std::string_view("a/b"), std::string_view("a\0", 2) })
        EXPECT_NE(whyNil(parent->Child(name)).find("can't be the name"), std::string::npos) << name;
}

TEST_F(Files, LinksAreFollowedAndTold)
{
    folder.write("file", "");
    folder.makeFolder("sub");
    std::filesystem::create_symlink("file", folder / "toFile");
    std::filesystem::create_symlink("sub", folder / "toSub");
    std::filesystem::create_symlink("nowhere", folder / "toNothing");
    struct Row {
        const char* name;
        bool exists, directory, alias;
    };
    for (const Row& row : { Row{ "file", true, false, false }, Row{ "sub", true, true, false },
             Row{ "toFile", true, false, true }, Row{ "toSub", true, true, true },
             Row{ "toNothing", false, false, true }, Row{ "none", false, false, false },
             Row{ "file/below", false, false, false } }) {
        EXPECT_EQ(item(row.name)->Exists(), row.exists) << row.name;
        EXPECT_EQ(item(row.name)->Directory(), row.directory) << row.name;
        EXPECT_EQ(item(row.name)->Alias(), row.alias) << row.name;
    }
}

TEST_F(Files, AWalkSeesEachChildOnceWhateverItsName)
{
    std::vector<std::string> expected = { ".hidden", "line\nend", "not\xFFUTF-8", "sub" };
    for (const std::string& name : expected)
        folder.write(name + "/x", "");
    const auto walked = GetFolderItem(folder.path());
    std::vector<std::string> names;
    for (int i = 1; i <= walked->Count(); ++i) {
        folder.write("made on the way " + std::to_string(i), "");
        names.push_back(walked->Item(i)->Name());
        EXPECT_TRUE(walked->Item(i)->Directory());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, expected);
    EXPECT_FALSE(walked->Item(0));
    EXPECT_FALSE(walked->Item(walked->Count() + 1));
    EXPECT_EQ(item("none")->Count(), 0);
}

TEST_F(Files, CreateAsFolderIsContentWithAFolderThatIsThere)
{
    item("new")->CreateAsFolder();
    item("new")->CreateAsFolder();
    EXPECT_TRUE(item("new")->Directory());
    folder.write("file", "");
    EXPECT_THROW(item("file")->CreateAsFolder(), IOException);
    EXPECT_THROW(item("file/below")->CreateAsFolder(), IOException);
    EXPECT_THROW(item("a/b")->CreateAsFolder(), IOException);
}

TEST_F(Files, OnlyRegularFilesOpen)
{
    folder.makeFolder("sub");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    struct Row {
        std::string path, reason;
    };
    for (const auto& [path, reason] :
        { Row{ folder / "sub", "is not a regular file" }, Row{ folder / "pipe", "is not a regular file" },
            Row{ "/dev/zero", "is not a regular file" }, Row{ folder / "none", "No such file" },
            Row{ folder / std::string(300, 'x'), "name too long" } }) {
        const auto text = GetFolderItem(path)->OpenAsTextFile();
        EXPECT_NE(whyNil(text).find(reason), std::string::npos) << whyNil(text);
        EXPECT_EQ(whyNil(BinaryStream::Open(*GetFolderItem(path))), whyNil(text));
    }
    EXPECT_NE(whyNil(item("pipe")->CreateTextFile()).find("is not a regular file"), std::string::npos);
}

TEST_F(Files, WhatTheUserHasNoPermissionForDoesNotOpen)
{
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    std::filesystem::permissions(folder.write("secret", ""), std::filesystem::perms::none);
    std::filesystem::permissions(folder.write("protected", "old"), std::filesystem::perms(0444));
    std::filesystem::permissions(folder.makeFolder("sub"), std::filesystem::perms(0555));
    std::vector<std::string> reasons;
    {
        const AsNobody asNobody;
        reasons = { whyNil(item("secret")->OpenAsTextFile()), whyNil(item("protected")->CreateTextFile()),
            whyNil(item("sub/new")->CreateTextFile()) };
    }
    for (const std::string& reason : reasons)
        EXPECT_NE(reason.find("Permission denied"), std::string::npos) << reason;
    EXPECT_EQ(folder.count(), 3);
}

TEST_F(Files, ReadsLinesOfAllKinds)
{
    const std::string filler(4094, 'x'); // so that a CR ends what is read ahead and its LF begins the next
    folder.write("lines", filler + "1\r\nunix\nmac\r\r\n\nlast \xFF");
    const auto stream = item("lines")->OpenAsTextFile();
    for (const std::string& line : { filler + "1", std::string("unix"), std::string("mac"), std::string(),
             std::string(), std::string("last \xFF"), std::string() })
        EXPECT_EQ(stream->ReadLine(), line);
}

TEST_F(Files, ReadsTheRestBehindALine)
{
    const std::string rest = std::string(100'000, 'x') + std::string("\xEF\xBB\xBF\0\r", 5);
    folder.write("file", "line\n" + rest);
    const auto whole = item("file")->OpenAsTextFile();
    EXPECT_EQ(whole->ReadLine(), "line");
    EXPECT_EQ(whole->ReadAll(), rest);
    EXPECT_EQ(whole->ReadAll(), "");

    const auto pieces = item("file")->OpenAsTextFile();
    pieces->ReadLine();
    std::string read;
    std::array<char, 1000> piece{};
    while (const std::size_t count = pieces->Read(piece))
        read.append(piece.data(), count);
    EXPECT_EQ(read, rest);

    pieces->Close();
    pieces->Close();
    EXPECT_THROW(pieces->ReadAll(), IOException);
    EXPECT_THROW(pieces->ReadLine(), IOException);
}

TEST_F(Files, ReadsAFileThatSaysItIsEmpty)
{
    EXPECT_EQ(GetFolderItem("/proc/self/cmdline")->OpenAsTextFile()->ReadAll(),
        TempFolder::contentOf("/proc/self/cmdline"));
}

TEST_F(Files, RefusesWhatDoesNotFitIntoMemory)
{
    const std::string path = folder.write("huge", "");
    std::filesystem::resize_file(path, std::uint64_t(1) << 43); // takes no room on the disk
    for (const auto& read : std::vector<std::function<void(const FolderItem&)>>{
             [](const FolderItem& file) { file.OpenAsTextFile()->ReadAll(); },
             [](const FolderItem& file) { file.OpenAsTextFile()->ReadLine(); },
             [](const FolderItem& file) {
                 BinaryStream::Open(file)->Read(BinaryStream::Open(file)->Length());
             } }) {
        try {
            read(*item("huge"));
            FAIL() << "read eight tebibytes";
        } catch (const OutOfMemoryException& error) {
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
            EXPECT_NE(std::string(error.what()).find("MiB"), std::string::npos) << error.what();
        }
    }
    EXPECT_EQ(BinaryStream::Open(*item("huge"))->Read(5), std::string(5, '\0'));
}

TEST_F(Files, BinaryStreamReadsInParts)
{
    folder.write("file", std::string("a\0b\r\nc", 6));
    const auto stream = BinaryStream::Open(*item("file"));
    EXPECT_EQ(stream->Length(), 6u);
    EXPECT_EQ(stream->Read(2), std::string("a\0", 2));
    EXPECT_EQ(stream->Read(std::numeric_limits<std::uint64_t>::max()), "b\r\nc");
    EXPECT_EQ(stream->Read(1), "");
    stream->Close();
    EXPECT_THROW(stream->Read(1), IOException);
}

TEST_F(Files, AvailableMemoryIsTheLeastOfMachineAndGroups)
{
    constexpr std::uint64_t none = std::numeric_limits<std::uint64_t>::max();
    struct Row {
        const char* name;
        std::vector<std::pair<const char*, const char*>> files;
        std::uint64_t expected;
    };
    const std::pair<const char*, const char*> machine
        = { "proc/meminfo", "MemTotal: 9 kB\nMemAvailable:   1000 kB\n" };
    const std::pair<const char*, const char*> groups2 = { "proc/self/cgroup", "0::/a/b\n" };
    const std::pair<const char*, const char*> groups1
        = { "proc/self/cgroup", "5:cpu:/\n4:memory:/a\n0::/\n" };
    for (const Row& row : { Row{ "nothing known", {}, none }, Row{ "machine", { machine }, 1'024'000 },
             Row{ "no limit", { machine, groups2, { "sys/fs/cgroup/a/b/memory.max", "max\n" } }, 1'024'000 },
             Row{ "parent's limit",
                 { machine, groups2, { "sys/fs/cgroup/a/memory.max", "5000" },
                     { "sys/fs/cgroup/a/memory.current", "2000" },
                     { "sys/fs/cgroup/a/memory.stat", "anon 700\ninactive_file 300\nactive_file 100\n" } },
                 3400 },
             Row{ "over the limit",
                 { groups2, { "sys/fs/cgroup/memory.max", "10" }, { "sys/fs/cgroup/memory.current", "20" } },
                 0 },
             Row{ "version 1",
                 { machine, groups1, { "sys/fs/cgroup/memory/a/memory.limit_in_bytes", "5000" },
                     { "sys/fs/cgroup/memory/a/memory.usage_in_bytes", "2000" } },
                 3000 } }) {
        const TempFolder root;
        for (const auto& [name, content] : row.files)
            root.write(name, content);
        EXPECT_EQ(availableMemory(root.path()), row.expected) << row.name;
    }
}

TEST_F(Files, WritesAFileOnlyWhenItIsWhole)
{
    const std::string path = folder.write("file", "old");
    std::filesystem::permissions(path, std::filesystem::perms(0666));
    const auto stream = item("file")->CreateTextFile();
    stream->WriteLine("a");
    stream->WriteLine(std::string(200'000, 'b'));
    EXPECT_EQ(TempFolder::contentOf(path), "old");
    stream->Close();
    stream->Close();
    EXPECT_EQ(TempFolder::contentOf(path), "a\n" + std::string(200'000, 'b') + "\n");
    EXPECT_EQ(permissionsOf(path), 0666u);
    EXPECT_EQ(folder.count(), 1);
    EXPECT_THROW(stream->WriteLine("late"), IOException);
}

TEST_F(Files, ANewFileIsEmptyAndHasTheUsersMode)
{
    const mode_t before = ::umask(0027);
    item("new")->CreateTextFile(); // its last reference goes at once
    ::umask(before);
    EXPECT_EQ(TempFolder::contentOf(folder / "new"), "");
    EXPECT_EQ(permissionsOf(folder / "new"), 0640u);
    EXPECT_EQ(folder.count(), 1);
}

TEST_F(Files, WritesBehindALinkAndLeavesTheLink)
{
    folder.write("sub/target", "old");
    std::filesystem::create_symlink("sub/target", folder / "middle");
    std::filesystem::create_symlink(folder / "middle", folder / "link");
    std::filesystem::create_symlink("sub/new", folder / "dangling");
    for (const char* name : { "link", "dangling" }) {
        const auto stream = item(name)->CreateTextFile();
        stream->WriteLine("new");
        stream->Close();
        EXPECT_TRUE(item(name)->Alias()) << name;
    }
    EXPECT_EQ(TempFolder::contentOf(folder / "sub/target"), "new\n");
    EXPECT_EQ(TempFolder::contentOf(folder / "sub/new"), "new\n");
    std::filesystem::create_symlink("loop", folder / "loop");
    EXPECT_FALSE(item("loop")->CreateTextFile());
}

TEST_F(Files, AFailedWriteLeavesTheTargetAndNothingElse)
{
    const std::string path = folder.write("file", "old");
    {
        const auto stream = item("file")->CreateTextFile();
        const FileSizeLimit limit(50'000);
        stream->WriteLine("fits");
        try {
            stream->WriteLine(std::string(100'000, 'x'));
            FAIL() << "wrote beyond the limit";
        } catch (const IOException& error) {
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
            EXPECT_NE(std::string(error.what()).find("too large"), std::string::npos) << error.what();
        }
        EXPECT_NO_THROW(stream->Close());
    }
    EXPECT_EQ(TempFolder::contentOf(path), "old");
    EXPECT_EQ(folder.count(), 1);
}

TEST_F(Files, AnExceptionOnItsWayLeavesTheTargetAndNothingElse)
{
    const std::string path = folder.write("file", "old");
    EXPECT_THROW(
        {
            const auto stream = item("file")->CreateTextFile();
            stream->WriteLine("half");
            throw IOException("something else");
        },
        IOException);
    EXPECT_EQ(TempFolder::contentOf(path), "old");
    EXPECT_EQ(folder.count(), 1);
}

TEST_F(Files, AFileThatCannotComeToItsPlaceIsReportedAndRemoved)
{
    const auto stream = item("place")->CreateTextFile();
    folder.makeFolder("place"); // meanwhile
    EXPECT_THROW(stream->Close(), IOException);
    EXPECT_EQ(folder.count(), 1);

    folder.write("file", "");
    EXPECT_NE(whyNil(item("file/below")->CreateTextFile()).find("Not a directory"), std::string::npos);
    EXPECT_NE(whyNil(item("none/file")->CreateTextFile()).find("No such file"), std::string::npos);
    EXPECT_NE(whyNil(item("place")->CreateTextFile()).find("not a regular file"), std::string::npos);
}

TEST_F(Files, ApplicationDataFollowsTheBaseDirectoryRules)
{
    const EnvironmentVariable home("HOME", (folder / "home").c_str());
    {
        const EnvironmentVariable data("XDG_DATA_HOME", (folder / "data/deep").c_str());
        EXPECT_EQ(SpecialFolder::ApplicationData()->NativePath(), folder / "data/deep");
        EXPECT_EQ(permissionsOf(folder / "data"), 0700u);
        EXPECT_EQ(permissionsOf(folder / "data/deep"), 0700u);
    }
    {
        const EnvironmentVariable data("XDG_DATA_HOME", "relative/is/ignored");
        EXPECT_EQ(SpecialFolder::ApplicationData()->NativePath(), folder / "home/.local/share");
        EXPECT_TRUE(item("home/.local/share")->Directory());
    }
    folder.write("file", "");
    const EnvironmentVariable data("XDG_DATA_HOME", (folder / "file/below").c_str());
    EXPECT_THROW(SpecialFolder::ApplicationData(), IOException);
}

TEST(DisplayPath, ShowsWhatCannotBeSeen)
{
    struct Row {
        std::string bytes, shown;
    };
    for (const auto& [bytes, shown] : { Row{ "/a b/Grüße €😀.txt", "/a b/Grüße €😀.txt" }, Row{ "", "" },
             Row{ "a\nb\tc\x7F", R"(a\x0Ab\x09c\x7F)" }, Row{ "\xFF\xC3", R"(\xFF\xC3)" },
             Row{ "\xC3(", R"(\xC3()" }, Row{ "\xE2\x82", R"(\xE2\x82)" }, Row{ "\xC0\xAF", R"(\xC0\xAF)" },
             Row{ "\xED\xA0\x80", R"(\xED\xA0\x80)" }, Row{ "\xE0\x80\xAF", R"(\xE0\x80\xAF)" },
             Row{ "\xF4\x90\x80\x80", R"(\xF4\x90\x80\x80)" },
             Row{ "a\xE2\x80\xAEtxt.exe", R"(a\u202Etxt.exe)" }, Row{ "\xC2\x85", R"(\u0085)" } })
        EXPECT_EQ(displayPath(bytes), shown);
}

} // namespace

} // namespace quilvane
