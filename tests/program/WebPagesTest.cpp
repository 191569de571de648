// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "framework/net/fetch.h"
#include "support/WebServer.h"

#include <chrono>
#include <functional>
#include <thread>

namespace quilvane {

namespace {

using Rows = std::vector<std::string>;

class WebPagesTest : public ProgramTest {
protected:
    WebPagesTest()
    {
        setenv("no_proxy", "*", 1);
        FetchOptions::standard().authoritiesFile = server.authoritiesFile();
    }
    ~WebPagesTest() override { FetchOptions::standard() = FetchOptions(); }

    void search(const std::string& url)
    {
        window().urlField.setText(url);
        window().importBtn.Push();
    }

    /// Runs the event loop until it is so; whether it came to that in time.
    static bool comesTrue(const std::function<bool()>& condition, int milliseconds = 10'000)
    {
        for (int i = 0; i < milliseconds / 5 && !condition(); ++i) {
            Application::DoEvents(10);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return condition();
    }

    WebServer server;
};

} // namespace

TEST_F(WebPagesTest, endStates)
{
    struct Case {
        const char* name;
        std::string body;
        Rows before;
        std::string results;
        bool filterBtn;
        Rows after;
        int matches;
    };
    const Case cases[] = {
        { "markup is searched, too", "<!-- c@y.org --><a href='mailto:x@y.org'>\xFF x&#64;z.org", {},
            "Total: 2 entries.", true, { "c@y.org", "x@y.org" }, 2 },
        { "one row", "x@y.org", {}, "Total: 1 entries.", true, { "x@y.org" }, 1 },
        { "none", "<p>", {}, "Total: 0 entries.", false, {}, 0 },
        { "none, behind earlier rows", "<p>", { "a@b.co" }, "Total: 1 entries.", false, { "a@b.co" }, 0 },
        { "nothing new", "A@b.co", { "a@b.co" }, "Total: 1 entries.", true, { "a@b.co" }, 1 },
        { "a picture", "logo@2x.png", {}, "Total: 0 entries.", true, {}, 1 },
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        server.page("/" + std::to_string(i), cases[i].body);
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const Case& c = cases[i];
        SCOPED_TRACE(c.name);
        Window1& w = window();
        w.clearBtn_Action();
        addRows(c.before);
        w.ProgressText.setText("untouched");
        w.searchStop.setValue(true);

        search(server.url("/" + std::to_string(i)));

        EXPECT_EQ(w.results.Text(), c.results);
        EXPECT_TRUE(w.results.Visible());
        EXPECT_EQ(w.ProgressText.Text(), "untouched");
        EXPECT_EQ(w.filterBtn.Enabled(), c.filterBtn);
        EXPECT_EQ(rows(), c.after);
        EXPECT_EQ(w.rCounter, c.matches);
        EXPECT_EQ(w.clearBtn.Enabled(), !c.after.empty());
        EXPECT_EQ(w.exportBtn.Enabled(), !c.after.empty());
        EXPECT_EQ(w.urlField.Text(), "");
        EXPECT_EQ(w.TextField1.Text(), "");
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
    }
    for (const auto& [url, path] : cases)
        search(url);
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

TEST_F(WebPagesTest, theViewerFollowsTheAddressThatStands)
{
    Window1& w = window();
    server.page("/page", "<title>t</title><body>what <b>is</b> seen");
    server.answer("/slow", "HTTP/1.1 200 OK\r\n\r\n<p>slow", WebServer::Ending::Stall);
    const std::string url = server.url("/page");
    for (std::size_t length = 1; length <= url.size(); ++length)
        w.urlField.setText(url.substr(0, length));
    EXPECT_TRUE(comesTrue([&] { return w.TextField1.Text() == "what is seen"; }));
    EXPECT_EQ(server.requests(), Rows{ "/page" });
    EXPECT_EQ(w.HTMLViewer1.EvaluateJavaScriptMBS("1 + 1"), "");

    w.urlField.setText(server.url("/slow"));
    EXPECT_TRUE(comesTrue([&] { return server.requests().size() == 2; }));
    w.TextField1.setText("");
    w.urlField.setText(url);
    EXPECT_TRUE(comesTrue([&] { return w.TextField1.Text() == "what is seen"; })) << "did not wait for it";

    w.TextField1.setText("kept");
    w.urlField.setText("https://127.0.0.1:1/");
    const auto changes = [&] { return w.TextField1.Text() != "kept"; };
    EXPECT_FALSE(comesTrue(changes, 600)) << "a page that can't be loaded";
    w.urlField.setText(url);
    w.urlField.setText("");
    EXPECT_FALSE(comesTrue(changes, 600)) << "nothing to load";

    w.urlField.setText(server.url("/slow"));
    EXPECT_TRUE(comesTrue([&] { return server.requests().size() == 4; }));
    w.Close();
    settle();
    EXPECT_TRUE(rows().empty()) << "the window has gone with the transfer under way, and a new one is there";
}

} // namespace quilvane
