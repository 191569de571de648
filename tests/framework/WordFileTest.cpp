// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/WordFileMBS.h"

#include "framework/Application.h"
#include "framework/exceptions.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/FolderItem.h"
#include "framework/processes.h"
#include "support/TempFolder.h"
#include "support/messageOf.h"

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <unistd.h>

namespace quilvane {

namespace {

const std::string letter = QUILVANE_SAMPLES "/letter.docx";

Ref<WordFileMBS> documentOf(const std::string& path, const DocumentLimits& limits = {})
{
    const Ref<BinaryStream> stream = BinaryStream::Open(*GetFolderItem(path));
    return WordFileMBS::OpenData(stream->Read(stream->Length()), limits);
}

class WordFile : public testing::Test {
protected:
    TempFolder folder;
};

TEST_F(WordFile, GivesItsTextOrAReason)
{
    for (const char* name : { "letter.docx", "letter.doc", "letter.rtf" })
        EXPECT_NE(documentOf(std::string(QUILVANE_SAMPLES "/") + name)->Text().find("body@example.com"),
            std::string::npos)
            << name;
    EXPECT_EQ(documentOf(folder.write("a.doc", "")).whyNil(), "The document is empty.");
    EXPECT_EQ(
        documentOf(folder.write("a.doc", "text")).whyNil(), "The document is encrypted or no Word document.");
    // The rest of a file, which was deleted meanwhile.
    const std::string later = folder.write("later.docx", "five " + TempFolder::contentOf(letter));
    const Ref<BinaryStream> stream = BinaryStream::Open(*GetFolderItem(later));
    stream->Read(5);
    std::filesystem::remove(later);
    EXPECT_TRUE(WordFileMBS::OpenData(stream->Read(stream->Length())));
}

TEST_F(WordFile, NeedsNoMemoryOfTheProgramWhateverItsSize)
{
    const std::string huge = folder.write("huge.docx", "text");
    std::filesystem::resize_file(huge, std::uint64_t(5) << 30); // takes no room on the disk
    EXPECT_EQ(
        documentOf(huge, { .memory = 64 << 20 }).whyNil(), "The document is encrypted or no Word document.");
    std::string links;
    for (int i = 0; i < 800'000; ++i)
        links += "<a href=x>";
    EXPECT_EQ(documentOf(folder.write("links.doc", links + "text"), { .memory = 64 << 20 })->Text(), "text");
    const std::string cut = folder.write("cut.docx", TempFolder::contentOf(letter));
    const Ref<BinaryStream> stream = BinaryStream::Open(*GetFolderItem(cut));
    const FileBytes bytes = stream->Read(stream->Length());
    std::filesystem::resize_file(cut, 0);
    EXPECT_EQ(WordFileMBS::OpenData(bytes).whyNil(), "The document is empty.");
}

TEST_F(WordFile, AnUnusableReaderIsAnExceptionThatNamesIt)
{
    const std::string noProgram = folder.write("no program", "text");
    const std::string ends = folder.write("ends", "#!/bin/sh\nexit 1\n");
    const std::string older = folder.write("older", "#!/bin/sh\necho hello >&3\nsleep 9\n");
    for (const std::string& script : { ends, older })
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    for (const auto& [program, reason] : {
             std::pair(folder / "missing", "could not be started: No such file or directory."),
             { noProgram, "could not be started: Permission denied." },
             { ends, "could not be started: it has ended at once." },
             { older, "belongs to another version of the program." },
         }) {
        const Scoped broken = otherReader(program);
        const std::string message = messageOf<RuntimeException>([] { documentOf(letter); });
        EXPECT_NE(message.find(program), std::string::npos) << message;
        EXPECT_NE(message.find(reason), std::string::npos) << message;
    }
}

TEST_F(WordFile, IsReadAgainWhenTheReaderOrASpareChildIsKilled)
{
    ASSERT_TRUE(documentOf(letter));
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(childrenOf(::getpid()).size(), 1u);
        ::kill(readerProcess(), SIGKILL);
        EXPECT_TRUE(documentOf(letter));
    }
    const pid_t reader = readerProcess();
    ::kill(childrenOf(reader).at(0), SIGKILL); // the one that waits for the next document
    EXPECT_TRUE(documentOf(letter));
    EXPECT_EQ(readerProcess(), reader);
    // As it does after a while without work: no zombie is left.
    ::kill(reader, SIGKILL);
    while (!childrenOf(::getpid()).empty())
        Application::DoEvents(10);
    EXPECT_TRUE(documentOf(letter));
}

} // namespace

} // namespace quilvane
