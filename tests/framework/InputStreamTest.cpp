// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/FilesTest.h"

#include "framework/exceptions.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/TextInputStream.h"
#include "framework/files/TextOutputStream.h"
#include "framework/files/availableMemory.h"
#include "support/messageOf.h"

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

using InputStreamTest = Files;

std::string readInPieces(TextInputStream& stream, std::size_t size)
{
    std::string text;
    std::string piece(size, ' ');
    while (const std::size_t count = stream.Read(piece))
        text.append(piece, 0, count);
    return text;
}

TEST_F(InputStreamTest, OtherThanRegularFilesGiveNoTextAndAnEmptyDocument)
{
    folder.makeFolder("folder.docx");
    ASSERT_EQ(::mkfifo((folder / "pipe.docx").c_str(), 0), 0);
    ASSERT_EQ(::mknod((folder / "socket.docx").c_str(), S_IFSOCK, 0), 0);
    for (const char* name : { "folder.docx", "pipe.docx", "socket.docx" }) {
        EXPECT_NE(item(name)->OpenAsTextFile().whyNil().find("is not a regular file"), std::string::npos)
            << name;
        const auto document = BinaryStream::Open(*item(name));
        EXPECT_EQ(document->Length(), 0u) << name;
        EXPECT_EQ(document->Read(10).length(), 0u) << name;
    }
    EXPECT_NE(item("none")->OpenAsTextFile().whyNil().find("No such file"), std::string::npos);
    EXPECT_EQ(BinaryStream::Open(*item("none")).whyNil(), item("none")->OpenAsTextFile().whyNil());
    EXPECT_NE(item("pipe.docx")->CreateTextFile().whyNil().find("is not a regular file"), std::string::npos);
}

TEST_F(InputStreamTest, FilesWithoutPermissionDoNotOpen)
{
    using std::filesystem::perms;
    std::filesystem::permissions(folder.path(), perms::all);
    std::filesystem::permissions(folder.write("secret", ""), perms::none);
    std::filesystem::permissions(folder.write("protected", "old"), perms(0444));
    std::filesystem::permissions(folder.makeFolder("sub"), perms(0555));
    const Scoped nobody = notRoot();
    const std::string reasons[] = { GetFolderItem(folder / "secret")->OpenAsTextFile().whyNil(),
        BinaryStream::Open(*item("secret")).whyNil(), item("protected")->CreateTextFile().whyNil(),
        item("sub/new")->CreateTextFile().whyNil() };
    for (const std::string& reason : reasons)
        EXPECT_NE(reason.find("Permission denied"), std::string::npos) << reason;
    EXPECT_EQ(folder.count(), 3);
}

TEST_F(InputStreamTest, FilesWithoutASizeOrWithAChangedSizeAreReadToTheirEnd)
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

TEST_F(InputStreamTest, ReadsLinesOfAllKinds)
{
    const std::string filler(4094, 'x'); // so that a buffer ends with a CR and the next begins with its LF
    folder.write("lines", filler + "1\r\nunix\nmac\r\r\n\nlast \xFF");
    const auto stream = item("lines")->OpenAsTextFile();
    for (const std::string& line : { filler + "1", std::string("unix"), std::string("mac"), std::string(),
             std::string(), std::string("last \xFF"), std::string() })
        EXPECT_EQ(stream->ReadLine(), line);
}

TEST_F(InputStreamTest, ReadsTheRestAfterALine)
{
    const std::string rest = std::string(100'000, 'x') + std::string("\xEF\xBB\xBF\0\r", 5);
    folder.write("file", "line\n" + rest);
    const auto whole = item("file")->OpenAsTextFile();
    EXPECT_EQ(whole->ReadLine(), "line");
    EXPECT_EQ(whole->ReadAll(), rest);
    EXPECT_EQ(whole->ReadAll(), "");

    const auto pieces = item("file")->OpenAsTextFile();
    pieces->ReadLine();
    EXPECT_EQ(readInPieces(*pieces, 1000), rest);
    pieces->Close();
    pieces->Close();
    EXPECT_THROW(pieces->ReadAll(), IOException);
    EXPECT_THROW(pieces->ReadLine(), IOException);
}

TEST_F(InputStreamTest, WideTextIsReadAsUtf8)
{
    using namespace std::string_literals;
    std::string longText;
    std::string longWide = "\xFF\xFE"s;
    for (int i = 0; i < 5'000; ++i) { // more than is read at a time, and pieces end inside of characters
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
        for (const std::size_t size : { 1U, 5U, 100'000U })
            EXPECT_EQ(readInPieces(*item("wide.txt")->OpenAsTextFile(), size), c.text) << size;
        EXPECT_EQ(item("wide.txt")->OpenAsTextFile()->ReadLine(), c.text.substr(0, c.text.find('\n')));
    }
}

TEST_F(InputStreamTest, RefusesFilesThatDoNotFitIntoMemory)
{
    std::filesystem::resize_file(
        folder.write("huge", "line\n"), std::uint64_t(1) << 43); // needs no room on the disk
    const auto text = item("huge")->OpenAsTextFile();
    EXPECT_EQ(text->ReadLine(), "line");
    for (const auto read : { &TextInputStream::ReadAll, &TextInputStream::ReadLine }) {
        const std::string message = messageOf<OutOfMemoryException>([&] { ((*text).*read)(); });
        EXPECT_NE(message.find(folder / "huge"), std::string::npos) << message;
        EXPECT_NE(message.find("MiB"), std::string::npos) << message;
    }
}

TEST_F(InputStreamTest, AvailableMemoryIsTheLeastOfTheMachinesAndTheGroups)
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

TEST_F(InputStreamTest, BinaryStreamGivesRangesOfItsFile)
{
    folder.write("file", "abcdef");
    const auto stream = BinaryStream::Open(*item("file"));
    stream->Read(2);
    const FileBytes bytes = stream->Read(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(bytes.offset(), 2u);
    EXPECT_EQ(bytes.length(), 4u);
    EXPECT_EQ(stream->Read(1).length(), 0u);
    stream->Close();
    EXPECT_THROW(stream->Read(1), IOException);
    EXPECT_EQ(::lseek(bytes.descriptor(), 0, SEEK_END), 6) << "stays open by itself";
}

} // namespace

} // namespace quilvane
