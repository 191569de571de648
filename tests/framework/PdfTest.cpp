// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/DynaPDFMBS.h"

#include "documents/reader/messages.h"
#include "framework/files/FileDescriptor.h"
#include "framework/files/FolderItem.h"
#include "framework/processes.h"
#include "support/TempFolder.h"
#include "support/WordFileBuilder.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

using namespace std::chrono_literals;

/// An engine that records its events.
class RecordingEngine : public DynaPDFMBS {
public:
    using DynaPDFMBS::DynaPDFMBS;

    int open(const std::string& path)
    {
        CreateNewPDF();
        SetImportFlags(0x80000000);
        const int result = OpenImportFile(*itemAt(path));
        ImportPDFFile(1);
        return result;
    }

    std::string pageText(int number)
    {
        const std::string text = EditPage(number) ? ExtractPageText() : "no page";
        EndPage();
        return text;
    }

    std::vector<int> errors; // codes
    std::vector<std::string> warnings;
    std::string lastMessage;
    int answer = 0;

protected:
    int Event_Error(int errorCode, const std::string& errorMessage, int errorType) override
    {
        if ((errorType & warningType) != 0)
            warnings.push_back(errorMessage);
        else
            errors.push_back(errorCode);
        lastMessage = errorMessage;
        return answer;
    }
};

class Pdf : public testing::Test {
protected:
    /// The path of a copy of the flyer that qpdf has made.
    std::string rewritten(const std::string& options) const
    {
        const std::string copy = folder / "copy.pdf";
        EXPECT_EQ(std::system(("qpdf " + options + " '" + flyer + "' " + copy).c_str()), 0) << options;
        return copy;
    }

    TempFolder folder;
    const std::string flyer = QUILVANE_SAMPLES "/flyer.pdf";
    RecordingEngine engine;
};

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

/// A frame of the reader's as it is sent.
std::string frame(const std::string& content, std::size_t announcedSize)
{
    return littleEndian(announcedSize, 4) + content;
}

template <typename Message>
std::string frame(const Message& message)
{
    const std::string content = encode(message);
    return frame(content, content.size());
}

class PdfFromLyingReader : public Pdf {
    Scoped m_liar = otherReader(QUILVANE_LYING_READER);
};

/// A document of these pages: 'p' for one that shows its number, '-' for one that can't be read.
std::string pages(const std::string& kinds)
{
    std::string frames = frame(PdfOpening{ .pageCount = static_cast<std::uint32_t>(kinds.size()) });
    for (std::size_t i = 0; i < kinds.size(); ++i)
        frames += frame(PdfPage{ kinds[i] == 'p', std::to_string(i + 1) });
    return frames + frame(PdfEnd{});
}

TEST_F(PdfFromLyingReader, ReportsOnlyAFewBadPages)
{
    using Code = DynaPDFMBS::ErrorCode;
    const auto badPages = [](std::size_t count) { return std::vector<int>(count, Code::noSuchPage); };
    std::vector<int> thenLeftOut = badPages(3);
    thenLeftOut.push_back(Code::pagesLeftOut);
    const std::string many(99'000, '-');
    struct Case {
        std::string_view name;
        std::string kinds;
        int pageCount;
        std::vector<int> errors;
        std::string lastText;
    };
    for (const auto& [name, kinds, pageCount, errors, lastText] : {
             Case{ "two in a row", "p--p", 4, badPages(2), "4" },
             { "the last one is good", many + "p", 99'001, badPages(3), "99001" },
             { "none is good", many, 3, thenLeftOut, "" },
             { "a good one between", "----p" + many, 5, thenLeftOut, "5" },
             { "every other one", "-p-p-p-p-p-p-p-p-p-p-p-p", 24, badPages(8), "24" },
             { "the last three", "pp---", 5, badPages(3), "2" },
         }) {
        RecordingEngine patient;
        ASSERT_EQ(patient.open(folder.write("a.pdf", pages(kinds))), 0) << name;
        std::string last;
        for (int page = 1; page <= patient.GetPageCount(); ++page)
            if (patient.EditPage(page))
                last = patient.ExtractPageText();
        EXPECT_EQ(patient.GetPageCount(), pageCount) << name;
        EXPECT_EQ(patient.errors, errors) << name;
        EXPECT_EQ(last, lastText) << name;
    }
    ASSERT_EQ(engine.open(folder.write("a.pdf", pages("---p"))), 0);
    for (int i = 0; i < 9; ++i)
        EXPECT_FALSE(engine.EditPage(1));
    EXPECT_TRUE(engine.EditPage(4)) << "a page that is asked for often counts once";
}

TEST_F(PdfFromLyingReader, LeavesOutPagesButNotTheLastOne)
{
    const std::string cut
        = frame(PdfOpening{ .pageCount = 9 }) + frame(PdfPage{ true, "1" }) + frame(PdfEnd{});
    struct Case {
        std::string_view name;
        std::string last;
        int pageCount;
        std::string text; // of all pages
    };
    for (const auto& [name, last, pageCount, text] : {
             Case{ "the last page", frame(PdfPage{ true, "9" }), 9, "19" },
             { "a bad page", frame(PdfPage{ false, "no" }), 1, "1" },
             { "no page", "", 1, "1" },
             { "a page of any length", frame("", UINT32_MAX), 1, "1" },
         }) {
        RecordingEngine patient;
        ASSERT_EQ(patient.open(folder.write("a.pdf", cut + last)), 0) << name;
        ASSERT_EQ(patient.GetPageCount(), pageCount) << name;
        std::string all;
        for (int page = 1; page <= pageCount; ++page)
            all += patient.pageText(page);
        EXPECT_EQ(all, text) << name;
        EXPECT_EQ(patient.errors, std::vector<int>{ DynaPDFMBS::pagesLeftOut }) << name;
    }
}

TEST_F(PdfFromLyingReader, RefusesInvalidFrames)
{
    const std::string ofOne = frame(PdfOpening{ .pageCount = 1 });
    const std::string page = frame(PdfPage{ true, "text" });
    const std::string end = frame(PdfEnd{});
    struct Case {
        std::string_view name;
        std::string frames;
        bool opens = true;
    };
    for (const auto& [name, frames, opens] : {
             Case{ "nothing", "", false },
             { "no opening", frame("?", 1), false },
             { "a long opening", frame("", largestPdfHead + 1), false },
             { "too many pages", frame(PdfOpening{ .pageCount = mostPdfPages + 1 }), false },
             { "no end", ofOne + page },
             { "a page too many", ofOne + page + page + end },
             { "a page of any length", ofOne + frame("", UINT32_MAX) },
             { "a cut page", (ofOne + page).substr(0, ofOne.size() + page.size() - 1) },
             { "a long reason", ofOne + frame(PdfPage{ false, std::string(longestPdfMessage + 1, 'x') }) },
             { "no frame", ofOne + frame("", 0) },
             { "many warnings",
                 ofOne + page + frame(PdfEnd{ std::vector<std::string>(mostPdfMessages + 1) }) },
         }) {
        RecordingEngine careful;
        EXPECT_EQ(careful.open(folder.write("a.pdf", frames)), opens ? 0 : -1) << name;
        EXPECT_EQ(careful.GetPageCount(), 0) << name;
        EXPECT_EQ(careful.errors, std::vector<int>{ DynaPDFMBS::engineLost }) << name;
    }
    ASSERT_EQ(engine.open(folder.write("a.pdf", ofOne + end)), 0);
    EXPECT_EQ(engine.errors, std::vector<int>{ DynaPDFMBS::pagesLeftOut });
}

} // namespace

} // namespace quilvane
