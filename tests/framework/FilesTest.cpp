// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Scoped.h"
#include "support/TempFolder.h"

#include "framework/exceptions.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/FolderItem.h"
#include "framework/files/SpecialFolder.h"
#include "framework/files/TextInputStream.h"
#include "framework/files/TextOutputStream.h"
#include "framework/files/availableMemory.h"
#include "framework/files/displayName.h"

#include "framework/files/FileDescriptor.h"
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// What it says when it throws this.
template <typename Exception>
std::string messageOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Exception& error) {
        return error.what();
    }
    return "nothing thrown";
}

template <typename T>
std::string whyNil(const Ref<T>& reference)
{
    return messageOf<NilObjectException>([&] { static_cast<void>(*reference); });
}

mode_t permissionsOf(const std::string& path)
{
    struct stat status { };
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

/// A socket in the file system.
class Socket {
public:
    explicit Socket(const std::string& path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(m_socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

private:
    FileDescriptor m_socket{ ::socket(AF_UNIX, SOCK_STREAM, 0) };
};

class Files : public testing::Test {
protected:
    Ref<FolderItem> item(std::string_view name) const { return itemAt(folder / name); }

    TempFolder folder;
};

TEST_F(Files, PathsBecomeAbsoluteAndLoseTrailingSlashes)
{
    const std::string current = std::filesystem::current_path().native();
    EXPECT_EQ(GetFolderItem("")->NativePath(), current);
    EXPECT_EQ(itemAt("a b")->NativePath(), (std::filesystem::path(current) / "a b").native());
    EXPECT_EQ(itemAt("/a/b//")->NativePath(), "/a/b");
    EXPECT_EQ(itemAt("/a/b/")->Name(), "b");
    EXPECT_EQ(GetFolderItem("/")->Name(), "/");
    EXPECT_EQ(GetFolderItem("/")->Child("x")->NativePath(), "/x");
    EXPECT_FALSE(GetFolderItem(std::string_view("/a\0b", 4)));
}

TEST_F(Files, GetFolderItemIsNilForAPathThatIsGone)
{
    folder.write("file", "");
    std::filesystem::create_symlink("nowhere", folder / "toNothing");
    for (const char* name : { "", "file", "toNothing" })
        EXPECT_TRUE(GetFolderItem(folder / name)) << name;
    for (const auto& [name, reason] :
        { std::pair("none", "\" could not be opened: No such file or directory."),
            std::pair("none/below", "\" could not be opened: No such file or directory."),
            std::pair("file/below", "\" could not be opened: Not a directory.") })
        EXPECT_EQ(whyNil(GetFolderItem(folder / name)), "The file \"" + folder / name + reason);
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
    folder.write("sub/file", "");
    std::filesystem::create_symlink("sub/file", folder / "toFile");
    std::filesystem::create_symlink("sub", folder / "toSub");
    std::filesystem::create_symlink("nowhere", folder / "toNothing");
    struct Row {
        const char* name;
        bool exists, directory, alias;
    };
    for (const auto& [name, exists, directory, alias] : { Row{ "sub", true, true, false },
             Row{ "toFile", true, false, true }, Row{ "toSub", true, true, true },
             Row{ "toNothing", false, false, true }, Row{ "sub/file/below", false, false, false } }) {
        EXPECT_EQ(item(name)->Exists(), exists) << name;
        EXPECT_EQ(item(name)->Directory(), directory) << name;
        EXPECT_EQ(item(name)->Alias(), alias) << name;
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
    EXPECT_THROW(item("a/b")->CreateAsFolder(), IOException);
}

TEST_F(Files, WhatIsNoRegularFileIsNoTextAndAnEmptyDocument)
{
    folder.makeFolder("folder.docx");
    ASSERT_EQ(::mkfifo((folder / "pipe.docx").c_str(), 0), 0);
    const Socket socket(folder / "socket.docx");
    for (const char* name : { "folder.docx", "pipe.docx", "socket.docx" }) {
        EXPECT_NE(whyNil(item(name)->OpenAsTextFile()).find("is not a regular file"), std::string::npos)
            << name;
        const auto document = BinaryStream::Open(*item(name));
        EXPECT_EQ(document->Length(), 0u) << name;
        EXPECT_EQ(document->Read(10).length(), 0u) << name;
    }
    EXPECT_NE(whyNil(item("none")->OpenAsTextFile()).find("No such file"), std::string::npos);
    EXPECT_EQ(whyNil(BinaryStream::Open(*item("none"))), whyNil(item("none")->OpenAsTextFile()));
    EXPECT_NE(whyNil(item("pipe.docx")->CreateTextFile()).find("is not a regular file"), std::string::npos);
}

TEST_F(Files, AnEndIsFoundInFilesThatTellNoSizeOrGrowOrShrink)
{
    EXPECT_NE(GetFolderItem("/proc/self/status")->OpenAsTextFile()->ReadAll().find("\nThreads:"),
        std::string::npos);
    const std::string longText(10'000, 'x');
    for (const auto& [before, after] : { std::pair(std::string("short"), longText),
             std::pair(longText, std::string("short")), std::pair(std::string(), longText) }) {
        folder.write("file", before);
        const auto text = item("file")->OpenAsTextFile();
        const auto bytes = BinaryStream::Open(*item("file"));
        folder.write("file", after);
        EXPECT_EQ(text->ReadAll(), after);
        EXPECT_EQ(bytes->Read(bytes->Length()).length(), after.size());
    }
}

TEST_F(Files, AFolderThatCannotBeListedSaysWhy)
{
    EXPECT_EQ(item("")->whyNotListed(), "");
    EXPECT_EQ(item("none")->whyNotListed(),
        "The folder \"" + folder / "none" + "\" could not be listed: No such file or directory.");
}

TEST_F(Files, WhatTheUserHasNoPermissionForDoesNotOpen)
{
    using std::filesystem::perms;
    std::filesystem::permissions(folder.path(), perms::all);
    std::filesystem::permissions(folder.write("secret", ""), perms::none);
    std::filesystem::permissions(folder.write("protected", "old"), perms(0444));
    std::filesystem::permissions(folder.makeFolder("sub"), perms(0555));
    const Scoped nobody = notRoot();
    const std::string reasons[] = { whyNil(GetFolderItem(folder / "secret")->OpenAsTextFile()),
        whyNil(BinaryStream::Open(*item("secret"))), whyNil(item("protected")->CreateTextFile()),
        whyNil(item("sub/new")->CreateTextFile()) };
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

TEST_F(Files, RefusesWhatDoesNotFitIntoMemory)
{
    std::filesystem::resize_file(
        folder.write("huge", ""), std::uint64_t(1) << 43); // takes no room on the disk
    const auto text = item("huge")->OpenAsTextFile();
    for (const std::string& message : { messageOf<OutOfMemoryException>([&] { text->ReadAll(); }),
             messageOf<OutOfMemoryException>([&] { text->ReadLine(); }) }) {
        EXPECT_NE(message.find(folder / "huge"), std::string::npos) << message;
        EXPECT_NE(message.find("MiB"), std::string::npos) << message;
    }
}

TEST_F(Files, WideTextIsReadAsUtf8)
{
    using namespace std::string_literals;
    std::string longText;
    std::string longWide = "\xFF\xFE"s;
    for (int i = 0; i < 5'000; ++i) { // more than is read at a time, and no piece ends where a character does
        longText += "a\xF0\x9F\x98\x80";
        longWide += "a\0\x3D\xD8\x00\xDE"s;
    }
    const struct {
        const char* name;
        std::string bytes;
        std::string text;
    } cases[] = {
        { "UTF-16, little-endian", "\xFF\xFE@\0\xE9\0\n\0b\0"s, "@\xC3\xA9\nb" },
        { "UTF-16, big-endian", "\xFE\xFF\0@\x20\xAC"s, "@\xE2\x82\xAC" },
        { "UTF-32, little-endian", "\xFF\xFE\0\0@\0\0\0\x00\xF6\x01\0"s, "@\xF0\x9F\x98\x80" },
        { "UTF-32, big-endian", "\0\0\xFE\xFF\0\0\0@"s, "@" },
        { "many pieces", longWide, longText },
        { "the mark alone", "\xFF\xFE"s, "" },
        { "an odd byte at the end", "\xFF\xFE@\0@"s, "@\xEF\xBF\xBD" },
        { "halves of pairs", "\xFF\xFE\x3D\xD8@\0\x00\xDE\x3D\xD8"s,
            "\xEF\xBF\xBD@\xEF\xBF\xBD\xEF\xBF\xBD" },
        { "no mark", "\xFFx@\0"s, "\xFFx@\0"s },
        { "UTF-8's mark", "\xEF\xBB\xBF@", "\xEF\xBB\xBF@" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        folder.write("wide.txt", c.bytes);
        EXPECT_EQ(item("wide.txt")->OpenAsTextFile()->ReadAll(), c.text);
        for (const std::size_t size : { 1U, 5U, 100'000U }) {
            const auto stream = item("wide.txt")->OpenAsTextFile();
            std::string text;
            std::string piece(size, ' ');
            while (const std::size_t count = stream->Read(piece))
                text.append(piece, 0, count);
            EXPECT_EQ(text, c.text) << size;
        }
        const auto stream = item("wide.txt")->OpenAsTextFile();
        EXPECT_EQ(stream->ReadLine(), c.text.substr(0, c.text.find('\n')));
    }
}

TEST_F(Files, BinaryStreamNamesItsBytesInParts)
{
    using Part = std::pair<std::uint64_t, std::uint64_t>;
    const auto read = [](BinaryStream& stream, std::uint64_t count) {
        const FileBytes bytes = stream.Read(count);
        return Part(bytes.offset(), bytes.length());
    };
    folder.write("file", "abcdef");
    const auto stream = BinaryStream::Open(*item("file"));
    EXPECT_EQ(stream->Length(), 6u);
    EXPECT_EQ(read(*stream, 2), Part(0, 2));
    EXPECT_EQ(read(*stream, std::numeric_limits<std::uint64_t>::max()), Part(2, 4));
    EXPECT_EQ(read(*stream, 1), Part(6, 0));
    const FileBytes bytes = stream->Read(0);
    stream->Close();
    EXPECT_THROW(stream->Read(1), IOException);
    EXPECT_EQ(::lseek(bytes.descriptor(), 0, SEEK_END), 6) << "stays open by itself";
}

TEST_F(Files, AvailableMemoryIsTheLeastOfMachineAndGroups)
{
    using Contents = std::vector<std::pair<const char*, const char*>>;
    struct Row {
        const char* name;
        Contents files;
        std::uint64_t expected;
    };
    const Contents::value_type machine{ "proc/meminfo", "MemTotal: 9 kB\nMemAvailable:   1000 kB\n" };
    const Contents::value_type groups2{ "proc/self/cgroup", "0::/a/b\n" };
    for (const Row& row : {
             Row{ "nothing known", {}, std::numeric_limits<std::uint64_t>::max() },
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
                 { machine, { "proc/self/cgroup", "5:cpu:/\n4:memory:/a\n0::/\n" },
                     { "sys/fs/cgroup/memory/a/memory.limit_in_bytes", "5000" },
                     { "sys/fs/cgroup/memory/a/memory.usage_in_bytes", "2000" } },
                 3000 },
         }) {
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
    const Scoped mask(::umask, ::umask(0), 0027);
    item("new")->CreateTextFile(); // its last reference goes at once
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

TEST_F(Files, AnExceptionOnItsWayLeavesTheTargetAndNothingElse)
{
    const std::string path = folder.write("file", "old");
    const auto exportThatFails = [&] {
        const auto stream = item("file")->CreateTextFile();
        stream->WriteLine("half");
        throw IOException("something else");
    };
    EXPECT_THROW(exportThatFails(), IOException);
    EXPECT_EQ(TempFolder::contentOf(path), "old");
    EXPECT_EQ(folder.count(), 1);
}

TEST_F(Files, WhatCannotBeReplacedIsFilledInPlace)
{
    using std::filesystem::perms;
    std::filesystem::permissions(folder.path(), perms::all);
    struct Case {
        const char* name;
        mode_t folderMode;
        bool hasOtherName;
    };
    const std::string longer = std::string(3'000'000, 'n') + '\n';
    for (const auto& [name, folderMode, hasOtherName] :
        { Case{ "closed", 0555, false }, Case{ "shared", 01777, false }, Case{ "linked", 0777, true } }) {
        if (::geteuid() != 0 && name == std::string("shared"))
            continue; // it takes a second user
        const std::string path = folder.write(std::string(name) + "/file", "the old text");
        std::filesystem::permissions(path, perms(0666));
        if (hasOtherName)
            std::filesystem::create_hard_link(path, folder / "other");
        std::filesystem::permissions(folder / name, perms(folderMode));
        struct stat before { };
        ASSERT_EQ(::stat(path.c_str(), &before), 0);
        const auto write = [&path](const std::string& text) {
            const auto stream = itemAt(path)->CreateTextFile();
            stream->Write(text);
            stream->Close();
        };
        {
            const Scoped nobody = notRoot();
            write(longer);
            EXPECT_EQ(TempFolder::contentOf(path), longer) << name;
            write("short");
            EXPECT_EQ(TempFolder::contentOf(hasOtherName ? folder / "other" : path), "short") << name;
            const Scoped fullDisk = largestFile(4096);
            EXPECT_THROW(write(longer), IOException) << name;
        }
        std::filesystem::permissions(folder / name, perms::all);
        EXPECT_EQ(TempFolder::contentOf(path), "short") << name;
        struct stat after { };
        EXPECT_TRUE(::stat(path.c_str(), &after) == 0 && after.st_ino == before.st_ino) << name;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / name), {}), 1) << name;
    }
}

/// From now on this process can make no file without a name, as on some network shares.
void forbidNamelessFiles()
{
    constexpr auto flags = static_cast<unsigned>(offsetof(seccomp_data, args) + 2 * sizeof(std::uint64_t));
    constexpr unsigned onlyTemporary = O_TMPFILE & ~O_DIRECTORY;
    sock_filter rules[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_openat, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, flags),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, onlyTemporary, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EOPNOTSUPP),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{ static_cast<unsigned short>(std::size(rules)), rules };
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0
        || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        std::_Exit(1);
}

/// Begins to write "file" in another process, which is killed in the middle.
void killWhileWriting(const std::string& path, bool hasNamelessFiles, const std::function<void()>& meanwhile)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const FileDescriptor told(ends[0]);
    FileDescriptor telling(ends[1]);
    const pid_t writer = ::fork();
    if (writer == 0) {
        if (!hasNamelessFiles)
            forbidNamelessFiles();
        const auto stream = itemAt(path)->CreateTextFile();
        stream->Write("half");
        telling.close();
        ::pause();
        std::_Exit(1);
    }
    telling.close();
    char byte = 0;
    EXPECT_EQ(::read(told.number(), &byte, 1), 0);
    meanwhile();
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
}

TEST_F(Files, AWriterThatIsKilledLeavesNothing)
{
    const std::string path = folder.write("file", "old");
    const auto writeAnother = [&] { item("another")->CreateTextFile()->WriteLine("whole"); };
    killWhileWriting(path, true, writeAnother);
    EXPECT_EQ(folder.count(), 2);

    killWhileWriting(path, false, [&] {
        writeAnother();
        EXPECT_EQ(folder.count(), 3) << "the file of one who still writes was removed";
    });
    EXPECT_EQ(folder.count(), 3) << "it has no name, so this test shows nothing";
    folder.write(".quilvane-is-no-name-of-ours", "");
    writeAnother();
    EXPECT_EQ(folder.count(), 3);
    EXPECT_EQ(TempFolder::contentOf(path), "old");
    EXPECT_EQ(TempFolder::contentOf(folder / "another"), "whole\n");
}

TEST_F(Files, AFileThatCannotComeToItsPlaceIsReportedAndRemoved)
{
    const auto stream = item("place")->CreateTextFile();
    folder.makeFolder("place"); // meanwhile
    EXPECT_THROW(stream->Close(), IOException);
    EXPECT_EQ(folder.count(), 1);
    EXPECT_NE(whyNil(item("none/file")->CreateTextFile()).find("No such file"), std::string::npos);
}

TEST_F(Files, ApplicationDataFollowsTheBaseDirectoryRules)
{
    const Scoped home = environmentVariable("HOME", folder / "home");
    for (const auto& [setting, path] : { std::pair(folder / "data/deep", folder / "data/deep"),
             std::pair(std::string("relative/is/ignored"), folder / "home/.local/share") }) {
        const Scoped dataHome = environmentVariable("XDG_DATA_HOME", setting);
        EXPECT_EQ(SpecialFolder::ApplicationData()->NativePath(), path);
        EXPECT_EQ(permissionsOf(path), 0700u);
        EXPECT_EQ(permissionsOf(std::filesystem::path(path).parent_path()), 0700u);
    }
    const Scoped dataHome = environmentVariable("XDG_DATA_HOME", folder.write("file", "") + "/below");
    EXPECT_THROW(SpecialFolder::ApplicationData(), IOException);
}

TEST(DisplayPath, ShowsWhatCannotBeSeen)
{
    struct Row {
        std::string bytes, shown;
    };
    for (const auto& [bytes, shown] : { Row{ "/a b/Grüße €😀.txt", "/a b/Grüße €😀.txt" },
             Row{ "a\nb\x7F", R"(a\x0Ab\x7F)" }, Row{ "\xFF\xC3(", R"(\xFF\xC3()" },
             Row{ "\xE2\x82", R"(\xE2\x82)" }, Row{ "\xED\xA0\x80", R"(\xED\xA0\x80)" },
             Row{ "\xE0\x80\xAF", R"(\xE0\x80\xAF)" }, Row{ "\xF4\x90\x80\x80", R"(\xF4\x90\x80\x80)" },
             Row{ "a\xE2\x80\xAEtxt.exe", R"(a\u202Etxt.exe)" }, Row{ "\xC2\x85", R"(\u0085)" } })
        EXPECT_EQ(displayPath(bytes), shown);
}

} // namespace

} // namespace quilvane
