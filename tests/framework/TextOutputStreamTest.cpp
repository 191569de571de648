// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/FilesTest.h"

#include "framework/exceptions.h"
#include "framework/files/TextOutputStream.h"

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

using TextOutputStreamTest = Files;

TEST_F(TextOutputStreamTest, WritesAFileOnlyWhenItIsWhole)
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

TEST_F(TextOutputStreamTest, ANewFileIsEmptyAndHasTheUsersMode)
{
    const Scoped mask(::umask, ::umask(0), 0027);
    item("new")->CreateTextFile(); // its last reference is dropped at once
    EXPECT_EQ(TempFolder::contentOf(folder / "new"), "");
    EXPECT_EQ(permissionsOf(folder / "new"), 0640u);
    EXPECT_EQ(folder.count(), 1);
}

TEST_F(TextOutputStreamTest, WritesToWhereALinkLeadsAndLeavesTheLink)
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

TEST_F(TextOutputStreamTest, FilesThatCannotBeReplacedAreFilledInPlace)
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
            continue; // needs a second user
        const std::string path = folder.write(std::string(name) + "/file", "the old text");
        std::filesystem::permissions(path, perms(0666));
        if (hasOtherName)
            std::filesystem::create_hard_link(path, folder / "other");
        std::filesystem::permissions(folder / name, perms(folderMode));
        const FolderItem::Identity before = itemAt(path)->identity();
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
        EXPECT_EQ(itemAt(path)->identity(), before) << name;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / name), {}), 1) << name;
    }
}

TEST_F(TextOutputStreamTest, AFileThatCannotReplaceItsTargetIsReportedAndRemoved)
{
    const auto stream = item("place")->CreateTextFile();
    folder.makeFolder("place"); // meanwhile
    EXPECT_THROW(stream->Close(), IOException);
    EXPECT_EQ(folder.count(), 1);
    EXPECT_NE(item("none/file")->CreateTextFile().whyNil().find("No such file"), std::string::npos);
}

/// From now on this process can't make a file without a name, as on some network shares.
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

/// Begins to write the file in another process, calls `meanwhile`, and kills the process.
void killWhileWriting(const std::string& path, bool hasNamelessFiles, const std::function<void()>& meanwhile)
{
    const pid_t writer = ::fork();
    if (writer == 0) {
        if (!hasNamelessFiles)
            forbidNamelessFiles();
        const auto stream = itemAt(path)->CreateTextFile();
        stream->Write("half");
        ::raise(SIGSTOP);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, WUNTRACED), writer);
    ASSERT_TRUE(WIFSTOPPED(status));
    meanwhile();
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
}

TEST_F(TextOutputStreamTest, AWriterThatIsKilledLeavesNothing)
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

} // namespace

} // namespace quilvane
