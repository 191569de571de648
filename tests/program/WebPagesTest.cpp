// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "framework/EventGuard.h"
#include "framework/net/fetch.h"
#include "support/WebServer.h"

#include <dlfcn.h>
#include <netdb.h>

#include <chrono>
#include <mutex>
#include <thread>

namespace {

constexpr const char* hostWithoutEnd = "without-end.invalid";
std::mutex lookingUp; // while a test holds it, the look-up of that host does not end

} // namespace

/// Replaces the C library's function, for the network library as well.
extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result)
{
    if (node && std::string_view(node) == hostWithoutEnd) {
        const std::lock_guard untilLetGo(lookingUp);
        return EAI_FAIL;
    }
    static const auto next = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(node, service, hints, result);
}

namespace quilvane {

namespace {

class WebPagesTest : public ProgramTest {
protected:
    void search(const std::string& url)
    {
        window().urlField.setText(url);
        window().importBtn.Push();
    }

    WebServer server;

private:
    Scoped m_noProxy = environmentVariable("no_proxy", "*");
    Scoped m_authorities{ FetchOptions::standard().authoritiesFile, server.authoritiesFile() };
};

} // namespace

TEST_F(WebPagesTest, endStates)
{
    struct Case {
        const char* name;
        std::string body;
        Rows before;
        Rows after;
        int matches;
    };
    const Case cases[] = {
        { "markup is searched, too", "<!-- c@y.org --><a href='mailto:x@y.org'>\xFF x&#64;z.org", {},
            { "c@y.org", "x@y.org" }, 2 },
        { "one row", "x@y.org", {}, { "x@y.org" }, 1 },
        { "none", "<p>", {}, {}, 0 },
        { "none, after earlier rows", "<p>", { "a@b.co" }, { "a@b.co" }, 0 },
        { "nothing new", "A@b.co", { "a@b.co" }, { "a@b.co" }, 1 },
        { "a picture", "logo@2x.png", {}, {}, 1 },
    };
    Window1& w = window();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        server.page("/page", c.body);
        w.clearBtn_Action();
        addRows(c.before);
        w.ProgressText.setText("untouched");
        w.searchStop.setValue(true);
        search(server.url("/page"));
        EXPECT_EQ(rows(), c.after);
        EXPECT_EQ(w.rCounter, c.matches);
        EXPECT_EQ(w.results.Text(), "Total: " + std::to_string(c.after.size()) + " entries.");
        EXPECT_TRUE(w.results.Visible());
        EXPECT_EQ(w.ProgressText.Text(), "untouched");
        EXPECT_EQ(w.filterBtn.Enabled(), c.matches > 0);
        for (const PushButton* button : { &w.clearBtn, &w.exportBtn })
            EXPECT_EQ(button->Enabled(), !c.after.empty()) << button->Name();
        EXPECT_EQ(w.urlField.Text() + w.TextField1.Text(), "");
        EXPECT_FALSE(w.searchStop.Value());
    }
}

TEST_F(WebPagesTest, theFirstInsecureSchemeIsMadeSecure)
{
    const std::string host = server.url("").substr(8);
    const std::pair<std::string, std::string> cases[] = {
        { "http://" + host + "/a?http://b", "/a?http://b" },
        { "HTTP://" + host + "/b", "/b" },
        { host + "/c?u=HttP://d", "/c?u=https://d" },
        { "https://" + host + "/d?u=https://e", "/d?u=https://e" },
    };
    Rows asked;
    for (const auto& [url, path] : cases) {
        server.page(path, "");
        asked.push_back(path);
        search(url);
    }
    EXPECT_EQ(server.requests(), asked);
}

TEST_F(WebPagesTest, failuresLeaveTheAddress)
{
    Window1& w = window();
    addRows({ "a@b.co" });
    w.results.setText("old text");
    w.searchStop.setValue(true);
    desktop.willShow("Please insert a URL to search.");
    w.importBtn.Push();
    EXPECT_EQ(w.results.Text(), "old text");
    EXPECT_FALSE(w.searchStop.Value());

    for (const std::string url : { "https://127.0.0.1:1/a", " ", "https://" }) {
        w.rCounter = 5;
        w.exportBtn.setEnabled(false);
        desktop.willReport(
            { '"' + url + '"', "could not be loaded", "The search of the web page has ended here." });
        search(url);
        EXPECT_EQ(w.urlField.Text(), url);
        EXPECT_EQ(w.results.Text(), "");
        EXPECT_EQ(w.rCounter, 0);
        EXPECT_EQ(rows(), Rows{ "a@b.co" });
    }
}

TEST_F(WebPagesTest, typingSendsNoRequestAndASearchSendsOne)
{
    Window1& w = window();
    server.page("/page", "x@y.org");
    const std::string url = server.url("/page");
    w.TextField1.setText("kept");
    for (std::size_t length = 1; length <= url.size(); ++length) {
        w.urlField.setText(url.substr(0, length));
        settle();
    }
    EXPECT_EQ(server.requests(), Rows());
    EXPECT_EQ(w.TextField1.Text(), "kept");

    for (const char* enter : { "\r", "\x03" }) { // the latter of the numeric pad
        w.urlField.setText(' ' + url + ' ');
        EXPECT_FALSE(w.urlField.KeyDown("\t"));
        EXPECT_TRUE(w.urlField.KeyDown(enter));
    }
    EXPECT_EQ(server.requests(), (Rows{ "/page", "/page" }));
    EXPECT_EQ(rows(), Rows{ "x@y.org" });
}

TEST_F(WebPagesTest, waitingForAPageEndsWhenTheUserCancels)
{
    Window1& w = window();
    server.answer("/stalled", "HTTP/1.1 200 OK\r\n\r\nx@y.org", WebServer::Ending::Stall);
    const std::string stalled = server.url("/stalled");
    const std::unique_lock nameServerIsSilent(lookingUp);
    struct Case {
        std::string url;
        std::string host;
        std::uint64_t bytes;
    };
    for (const Case& c : { Case{ stalled, "127.0.0.1", 7 }, Case{ hostWithoutEnd, hostWithoutEnd, 0 } }) {
        SCOPED_TRACE(c.url);
        w.urlField.setText(c.url);
        w.rCounter = 5;
        w.results.setText("old text");
        w.exportBtn.setEnabled(true);
        desktop.willLookOn([&](std::string_view host, const ScriptedDesktop::BytesSoFar& bytesSoFar) {
            EXPECT_EQ(host, c.host);
            while (bytesSoFar().value_or(c.bytes) < c.bytes)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            EXPECT_EQ(bytesSoFar(), c.bytes);
            return false;
        });
        w.importBtn.Push();
        EXPECT_EQ(w.urlField.Text(), c.url);
        EXPECT_EQ(w.results.Text(), "");
        EXPECT_EQ(w.rCounter, 0);
        EXPECT_EQ(rows(), Rows());
        EXPECT_TRUE(w.exportBtn.Enabled()) << "the buttons were brought up to date";
    }

    bool handlerWentOn = false;
    desktop.willLookOn([&](std::string_view, const ScriptedDesktop::BytesSoFar&) {
        application->Quit();
        return true;
    });
    w.urlField.setText(stalled);
    runGuarded("test", [&] {
        w.doHTML();
        handlerWentOn = true;
    });
    EXPECT_FALSE(handlerWentOn) << "the program was quit";
}

} // namespace quilvane
