// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TempFolder.h"

#include "documents/reader/frames.h"
#include "framework/documents/DynaPDFMBS.h"
#include "framework/files/FileDescriptor.h"
#include "framework/files/FolderItem.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

using namespace std::chrono_literals;

TEST(Frames, EndInTheirOwnWays)
{
    std::array<int, 2> sockets{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()), 0);
    const auto soon = [] { return Deadline::clock::now() + 20ms; };
    std::string frame;
    // More than the socket holds, so both directions of waiting are gone through.
    const std::string large(4 << 20, 'x');
    EXPECT_EQ(sendFrame(sockets[0], large, soon()), Transfer::TooLate);
    EXPECT_EQ(receiveFrame(sockets[1], frame, large.size(), soon()), Transfer::TooLate);
    ASSERT_EQ(::send(sockets[1], "\12\0\0\0\12\0", 6, 0), 6); // ten bytes announced, and half a length
    EXPECT_EQ(receiveFrame(sockets[0], frame, 9, soon()), Transfer::Refused);
    ::close(sockets[1]);
    EXPECT_EQ(receiveFrame(sockets[0], frame, 9, soon()), Transfer::Closed);
    EXPECT_EQ(sendFrame(sockets[0], "into nothing", soon()), Transfer::Closed);
    ::close(sockets[0]);
}

/// An engine that keeps what its event tells.
class RecordingEngine : public DynaPDFMBS {
public:
    using DynaPDFMBS::DynaPDFMBS;

    int open(const std::string& path, const std::string& password = {})
    {
        CreateNewPDF();
        SetImportFlags(0x80000000);
        const int result = OpenImportFile(*itemAt(path), 0, password);
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
    int answer = 0;

protected:
    int Event_Error(int errorCode, const std::string& errorMessage, int errorType) override
    {
        if ((errorType & warningType) != 0)
            warnings.push_back(errorMessage);
        else
            errors.push_back(errorCode);
        return answer;
    }
};

/// A document of these objects, the first of which, number 1, is the catalog.
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

/// A document of one page, which draws `content` that many times.
std::string onePage(const std::string& content, int times = 1)
{
    std::string contents;
    for (int i = 0; i < times; ++i)
        contents += "4 0 R ";
    return pdfOf({ catalog, "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 600 800]/Resources<</Font<</F 5 0 R>>>>/Contents[" + contents
            + "]>>",
        "<</Length " + std::to_string(content.size()) + ">>\nstream\n" + content + "\nendstream",
        "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>" });
}

/// Content that shows the text, each time a little farther.
std::string show(const std::string& text)
{
    return "1 0 0 1 .1 .2 cm BT /F 12 Tf 72 700 Td (" + text + ") Tj ET ";
}

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

TEST_F(Pdf, GivesTheTextOfEachPage)
{
    ASSERT_EQ(engine.open(flyer), 0);
    ASSERT_EQ(engine.GetPageCount(), 3);
    EXPECT_NE(engine.pageText(1).find("front-page@example.org"), std::string::npos);
    const std::string last = engine.pageText(3);
    for (const std::string_view address : { "office.staff@example.com", "ENROL@example.com",
             "enrol@example.com", "press+flyer@media.example.net", "organisers@print-shop.example.org" })
        EXPECT_NE(last.find(address), std::string::npos) << address << " in\n" << last;
    EXPECT_EQ(last.find("front-page"), std::string::npos);
    EXPECT_TRUE(engine.errors.empty());
    EXPECT_TRUE(engine.warnings.empty());
}

TEST_F(Pdf, FollowsTheOrderOfCalls)
{
    EXPECT_EQ(engine.ImportPDFFile(1), -1);
    EXPECT_FALSE(engine.EditPage(1));
    EXPECT_TRUE(engine.errors.empty());
    ASSERT_EQ(engine.OpenImportFile(*GetFolderItem(flyer)), 0);
    EXPECT_EQ(engine.GetPageCount(), 0);
    EXPECT_EQ(engine.ImportPDFFile(1), 3);
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
    const std::string expected = engine.pageText(3);
    for (const std::string options :
        { "--object-streams=generate", "--linearize --qdf --stream-data=uncompress",
            "--encrypt '' owner 256 --", "--allow-weak-crypto --encrypt '' owner 40 --" }) {
        EXPECT_EQ(engine.open(rewritten(options)), 0) << options;
        EXPECT_EQ(engine.pageText(3), expected) << options;
    }
    EXPECT_TRUE(engine.errors.empty());

    const std::string text
        = "BT /F 12 Tf 500 300 Td (out.of.the.page@example.com) Tj 9 600 Td (off@example.com) Tj ET";
    ASSERT_EQ(engine.open(folder.write("\xFF wide\n.pdf", onePage(text))), 0);
    EXPECT_EQ(engine.pageText(1), "out.of.the.page@example.com\noff@example.com\n");
}

TEST_F(Pdf, SaysOnceWhyThereIsNoPage)
{
    using Code = DynaPDFMBS::ErrorCode;
    const std::string pipe = folder / "pipe.pdf";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string locked = rewritten("--encrypt open owner 256 --");
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
             Case{ locked, false, 0, Code::documentLocked },
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
    EXPECT_EQ(engine.open(locked, "open"), 0);
}

TEST_F(Pdf, WarnsOnceAndCanBeStopped)
{
    std::string content = show("me@example.com");
    for (int i = 0; i < 1000; ++i)
        content += "nonsense" + std::to_string(i) + ' ';
    const std::string path = folder.write("a.pdf", onePage(content));
    ASSERT_EQ(engine.open(path), 0);
    engine.answer = -1;
    ASSERT_TRUE(engine.EditPage(1));
    EXPECT_EQ(engine.ExtractPageText(), "");
    EXPECT_EQ(engine.warnings, std::vector<std::string>{ "Unknown operator 'nonsense0'" });
    EXPECT_EQ(engine.ExtractPageText(), "me@example.com\n");
    EXPECT_EQ(engine.warnings.size(), 1u);

    std::string damaged = onePage(content);
    const std::string repairable = folder.write("b.pdf", damaged.replace(damaged.find("/Size"), 5, "/Sise"));
    EXPECT_NE(engine.open(repairable), 0);
    EXPECT_FALSE(engine.EditPage(1));
    engine.answer = 0;
    EXPECT_EQ(engine.open(repairable), 0);
    EXPECT_EQ(engine.pageText(1), "me@example.com\n");
    EXPECT_TRUE(engine.errors.empty());
}

std::vector<pid_t> children()
{
    std::ifstream file("/proc/thread-self/children");
    return { std::istream_iterator<pid_t>(file), {} };
}

std::ptrdiff_t openFiles(const std::string& process)
{
    return std::distance(std::filesystem::directory_iterator("/proc/" + process + "/fd"), {});
}

TEST_F(Pdf, LosesNothingButTheDocumentWithItsEngine)
{
    const auto toEngine = [](int signal) { return [signal] { ::kill(children().at(0), signal); }; };
    const auto nothing = [] {};
    const std::string healthy = onePage(show("me@example.com"));
    constexpr PdfLimits usual;
    constexpr PdfLimits hasty{ .time = 500ms };
    struct Case {
        std::string_view name;
        std::string pdf;
        PdfLimits limits;
        std::function<void()> meanwhile;
    };
    const std::vector<Case> cases{
        { "killed", healthy, usual, toEngine(SIGKILL) },
        { "crashed", healthy, usual, toEngine(SIGSEGV) },
        { "stopped", healthy, hasty, toEngine(SIGSTOP) },
        { "endless page", onePage(std::string(100'000, 'Q'), 20'000), hasty, nothing },
#ifndef __SANITIZE_ADDRESS__ // no limit of memory under it
        { "memory", onePage(show("some words"), 100'000), { .memory = 64 << 20 }, nothing },
#endif
    };
    const FileDescriptor leaky(::open("/dev/null", O_RDONLY));
    const std::ptrdiff_t filesBefore = openFiles("self");
    for (const auto& [name, pdf, limits, meanwhile] : cases) {
        RecordingEngine suffering(limits);
        ASSERT_EQ(suffering.open(folder.write("a.pdf", pdf)), 0) << name;
        ASSERT_TRUE(suffering.EditPage(1)) << name;
        // The standard three, the socket, the document, and the document as the library has opened it.
        EXPECT_EQ(openFiles(std::to_string(children().at(0))), 6) << name;
        meanwhile();
        EXPECT_EQ(suffering.ExtractPageText(), "") << name;
        EXPECT_EQ(suffering.errors, std::vector<int>{ DynaPDFMBS::engineLost }) << name;
        EXPECT_EQ(suffering.GetPageCount(), 0) << name;
        EXPECT_FALSE(suffering.EditPage(1)) << name;
        EXPECT_EQ(suffering.errors.size(), 1u) << name;
        EXPECT_TRUE(children().empty()) << name;
        EXPECT_EQ(openFiles("self"), filesBefore) << name;
        EXPECT_EQ(suffering.open(folder.write("b.pdf", healthy)), 0) << name;
        EXPECT_EQ(suffering.pageText(1), "me@example.com\n") << name;
    }
}

} // namespace

} // namespace quilvane
