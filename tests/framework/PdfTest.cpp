// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/PdfTest.h"

#include "framework/files/FileDescriptor.h"
#include "framework/processes.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

using namespace std::chrono_literals;

/// A document with these objects; the first one, number 1, is the catalog.
std::string pdfOf(const std::vector<std::string>& objects)
{
    std::string pdf = "%PDF-1.4\n";
    std::string table = "xref\n0 " + std::to_string(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const std::string offset = std::to_string(pdf.size());
        table += std::string(10 - offset.size(), '0') + offset + " 00000 n \n";
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    return pdf + table + "trailer\n<</Size " + std::to_string(objects.size() + 1)
        + "/Root 1 0 R>>\nstartxref\n" + std::to_string(pdf.size()) + "\n%%EOF\n";
}

const std::string catalog = "<</Type/Catalog/Pages 2 0 R>>";

/// A document of equal pages, each of which draws `content` so many times.
std::string pdfDrawing(const std::string& content, int times = 1, int pages = 1)
{
    std::string contents, kids;
    for (int i = 0; i < times; ++i)
        contents += "3 0 R ";
    std::vector<std::string> objects{ catalog, "",
        "<</Length " + std::to_string(content.size()) + ">>\nstream\n" + content + "\nendstream",
        "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>" };
    for (int i = 0; i < pages; ++i) {
        objects.push_back(
            "<</Type/Page/Parent 2 0 R/MediaBox[0 0 600 800]/Resources<</Font<</F 4 0 R>>>>/Contents["
            + contents + "]>>");
        kids += std::to_string(objects.size()) + " 0 R ";
    }
    objects[1] = "<</Type/Pages/Kids[" + kids + "]/Count " + std::to_string(pages) + ">>";
    return pdfOf(objects);
}

/// Content that shows the text, each time a little farther right and up.
std::string show(const std::string& text)
{
    return "1 0 0 1 .1 .2 cm BT /F 12 Tf 72 700 Td (" + text + ") Tj ET ";
}

TEST_F(Pdf, FollowsTheOrderOfCalls)
{
    EXPECT_EQ(engine.ImportPDFFile(1), -1);
    EXPECT_FALSE(engine.EditPage(1));
    EXPECT_TRUE(engine.errors.empty());
    ASSERT_EQ(engine.open(flyer), 0);
    EXPECT_EQ(engine.GetPageCount(), 3);
    for (const int page : { 0, -1, 4 })
        EXPECT_FALSE(engine.EditPage(page)) << page;
    EXPECT_EQ(engine.errors, std::vector<int>(3, DynaPDFMBS::noSuchPage));
    EXPECT_TRUE(engine.EditPage(3));
    EXPECT_TRUE(engine.EndPage());
    EXPECT_EQ(engine.ExtractPageText(), "");
}

TEST_F(Pdf, ReadsWhatOtherProgramsWrite)
{
    ASSERT_EQ(engine.open(flyer), 0);
    EXPECT_NE(engine.pageText(1).find("front-page@example.org"), std::string::npos);
    const std::string expected = engine.pageText(3);
    EXPECT_NE(expected.find("enrol@example.com"), std::string::npos);
    for (const std::string options :
        { "--object-streams=generate", "--linearize --qdf --stream-data=uncompress",
            "--encrypt '' owner 256 --", "--allow-weak-crypto --encrypt '' owner 40 --" }) {
        EXPECT_EQ(engine.open(rewritten(options)), 0) << options;
        EXPECT_EQ(engine.pageText(3), expected) << options;
    }
    EXPECT_TRUE(engine.errors.empty());

    const std::string text
        = "BT /F 12 Tf 500 300 Td (out.of.the.page@example.com) Tj 9 600 Td (off@example.com) Tj ET";
    ASSERT_EQ(engine.open(folder.write("\xFF wide\n.pdf", pdfDrawing(text))), 0);
    EXPECT_EQ(engine.pageText(1), "out.of.the.page@example.com\noff@example.com\n");
}

TEST_F(Pdf, ReportsOnceWhyThereIsNoPage)
{
    using Code = DynaPDFMBS::ErrorCode;
    const std::string pipe = folder / "pipe.pdf";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto withPages = [this](const std::string& name, const std::string& pages) {
        return folder.write(name, pdfOf({ catalog, "<</Type/Pages" + pages + ">>" }));
    };
    struct Case {
        std::string path;
        bool opens;
        int pageCount;
        Code code;
    };
    for (const auto& [path, opens, pageCount, code] : {
             Case{ folder / "missing.pdf", false, 0, Code::fileNotOpened },
             Case{ pipe, false, 0, Code::fileNotOpened },
             Case{ folder.write("text.pdf", "%PDF-1.7\nme@example.com"), false, 0, Code::documentDamaged },
             Case{ rewritten("--encrypt open owner 256 --"), false, 0, Code::documentLocked },
             Case{ withPages("no page.pdf", "/Kids[]/Count 0"), true, 0, Code::noSuchPage },
             Case{ withPages("miscounted.pdf", "/Kids[]/Count 2"), true, 2, Code::noSuchPage },
             Case{ withPages("its own page.pdf", "/Kids[2 0 R]/Count 1"), true, 1, Code::noSuchPage },
         }) {
        RecordingEngine refusing;
        EXPECT_EQ(refusing.open(path) == 0, opens) << path;
        EXPECT_EQ(refusing.GetPageCount(), pageCount) << path;
        EXPECT_FALSE(refusing.EditPage(1)) << path;
        EXPECT_EQ(refusing.errors, std::vector<int>{ code }) << path;
    }
}

TEST_F(Pdf, GivesAllWarningsInOneAndCanBeStopped)
{
    std::string content = show("me@example.com");
    for (int i = 0; i < 1000; ++i)
        content += "nonsense" + std::to_string(i) + ' ';
    content += "odd ";
    std::string damaged = pdfDrawing(content);
    const std::string path = folder.write("a.pdf", damaged.replace(damaged.find("/Size"), 5, "/Sise"));
    ASSERT_EQ(engine.open(path), 0);
    EXPECT_EQ(engine.pageText(1), "me@example.com\n");
    ASSERT_EQ(engine.warnings.size(), 1u);
    for (const char* part : { "trailer", "\nUnknown operator 'nonsense0'\n", "'odd'" })
        EXPECT_NE(engine.warnings[0].find(part), std::string::npos) << part << " in\n" << engine.warnings[0];

    engine.answer = -1;
    ASSERT_EQ(engine.open(path), 0);
    EXPECT_EQ(engine.GetPageCount(), 0);
    EXPECT_FALSE(engine.EditPage(1));
    EXPECT_EQ(engine.warnings.size(), 2u);
    EXPECT_TRUE(engine.errors.empty());
}

/// Waits until the reader has so many running children, and returns the first: the one that reads a document,
/// if any; the last one waits for the next document.
pid_t firstOfChildren(std::size_t count)
{
    std::vector<pid_t> children;
    do {
        children = childrenOf(readerProcess());
        std::erase_if(children, [](pid_t child) {
            std::ifstream file("/proc/" + std::to_string(child) + "/stat");
            std::string status; // stays empty if the child has gone meanwhile
            std::getline(file, status);
            return status.empty() || status.find(") Z ") != std::string::npos;
        });
    } while (children.size() != count);
    return children[0];
}

TEST_F(Pdf, AFailedChildCostsOnlyItsDocument)
{
    const auto toChild = [](int signal) {
        return [signal] {
            const pid_t child = firstOfChildren(2);
            // Standard input, output and error, the socket and the document. Only root can list them.
            EXPECT_TRUE(::geteuid() != 0 || openFiles(child) == 5);
            ::kill(child, signal);
        };
    };
    const auto nothing = [] {};
    const std::string endless = pdfDrawing(std::string(100'000, 'Q'), 20'000);
    constexpr DocumentLimits usual;
    struct Case {
        std::string_view name;
        std::string pdf;
        DocumentLimits limits;
        std::function<void()> meanwhile;
        std::string_view reason;
    };
    const std::vector<Case> cases{
        { "killed", endless, usual, toChild(SIGKILL), "broke down: Killed." },
        { "asleep", endless, { .silence = 300ms }, toChild(SIGSTOP), "did almost nothing for 0 seconds." },
        { "endless page", endless, { .step = 1s }, nothing, "a page of it takes more than 1 seconds." },
        { "endless document", endless, { .document = 1s }, nothing, "It takes more than 1 seconds." },
#ifndef __SANITIZE_ADDRESS__ // it handles faults itself, and memory can't be limited with it
        { "crashed", endless, usual, toChild(SIGSEGV), "broke down: Segmentation fault." },
        { "memory", pdfDrawing(show("some words"), 100'000), { .memory = 16 << 20 }, nothing,
            "It needs more than 16 MiB of memory." },
#endif
    };
    ASSERT_EQ(engine.open(flyer), 0);
    const FileDescriptor leaky(::open("/dev/null", O_RDONLY));
    const std::ptrdiff_t filesBefore = openFiles();
    for (const auto& [name, pdf, limits, meanwhile, reason] : cases) {
        RecordingEngine suffering(limits);
        firstOfChildren(1); // the child of the last document has ended
        ASSERT_EQ(suffering.OpenImportFile(*GetFolderItem(folder.write("a.pdf", pdf))), 0) << name;
        meanwhile();
        EXPECT_EQ(suffering.ImportPDFFile(1), -1) << name;
        EXPECT_EQ(suffering.errors, std::vector<int>{ DynaPDFMBS::engineLost }) << name;
        EXPECT_TRUE(suffering.lastMessage.ends_with(reason)) << name << ": " << suffering.lastMessage;
        EXPECT_EQ(suffering.GetPageCount(), 0) << name;
        EXPECT_FALSE(suffering.EditPage(1)) << name;
        EXPECT_EQ(suffering.errors.size(), 1u) << name;
        firstOfChildren(1);
        EXPECT_EQ(openFiles(), filesBefore) << name;
        EXPECT_EQ(engine.open(flyer), 0) << name;
        EXPECT_EQ(engine.GetPageCount(), 3) << name;
    }
}

TEST_F(Pdf, ReadsOnlyThePagesThatTheTimeAllows)
{
    const std::string slow = pdfDrawing(std::string(100'000, 'q'), 5, 2000);
    RecordingEngine hasty({ .document = 2s });
    ASSERT_EQ(hasty.open(folder.write("a.pdf", slow)), 0);
    EXPECT_EQ(hasty.GetPageCount(), 2000) << "the last page is read";
    EXPECT_EQ(hasty.errors, std::vector<int>{ DynaPDFMBS::pagesLeftOut });
    EXPECT_TRUE(hasty.EditPage(hasty.GetPageCount()));
}

TEST_F(Pdf, IsReadAgainWhenTheReaderIsLost)
{
    ASSERT_EQ(engine.open(flyer), 0);
    const std::string expected = engine.pageText(3);
    ::kill(readerProcess(), SIGKILL);
    EXPECT_EQ(engine.open(flyer), 0);
    EXPECT_EQ(engine.pageText(3), expected);
    const std::string path = folder.write("a.pdf", pdfDrawing(show("me@example.com"), 2000));
    ASSERT_EQ(engine.OpenImportFile(*GetFolderItem(path)), 0);
    ::kill(readerProcess(), SIGKILL);
    EXPECT_EQ(engine.ImportPDFFile(1), 1);
    EXPECT_TRUE(engine.errors.empty());
}

TEST_F(Pdf, LeavesNothingAtWorkWhenTheProgramIsKilled)
{
    // Children that the program leaves become the test's.
    const Scoped adopting([](int isOn) { ::prctl(PR_SET_CHILD_SUBREAPER, isOn); }, 0, 1);
    const std::string path = folder.write("a.pdf", pdfDrawing(std::string(100'000, 'Q'), 20'000));
    ReaderProcess::forget(); // the program below needs a reader of its own
    const pid_t program = ::fork();
    if (program == 0) {
        RecordingEngine doomed;
        doomed.OpenImportFile(*itemAt(path)); // returns when the reading has begun
        ::raise(SIGSTOP);
    }
    ::waitpid(program, nullptr, WUNTRACED);
    const pid_t reader = childrenOf(program).at(0);
    const pid_t document = childrenOf(reader).at(0);
    ::kill(reader, SIGSTOP); // otherwise it might notice by itself that the program has ended
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    ::kill(reader, SIGCONT);
    for (const pid_t left : { reader, document }) {
        int status = 0;
        EXPECT_EQ(::waitpid(left, &status, 0), left);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    }
    while (::waitpid(-1, nullptr, 0) > 0) { } // the child that waits for the next document
}

} // namespace

} // namespace quilvane
