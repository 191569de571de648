// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/WindowTest.h"

#include "framework/EventGuard.h"
#include "framework/dialogs/dialogs.h"
#include "framework/documents/internal/ReaderProcess.h"
#include "framework/files/FileType.h"
#include "framework/keepWindowPainted.h"
#include "framework/regex/RegEx.h"
#include "framework/threads/Timer.h"

#include <QAccessible>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QListView>
#include <QMimeData>
#include <QTimer>

#include <algorithm>
#include <array>
#include <csignal>

#include <poll.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// Works like a long handler until `done`.
template <typename Done>
void workUntil(
    Done done, const std::function<void()>& work = [] { keepWindowPainted(); })
{
    constexpr qint64 patience = 20'000; // ms; only a failure takes so long
    QElapsedTimer time;
    time.start();
    while (!done() && time.elapsed() < patience)
        work();
    EXPECT_TRUE(done());
}

class PaintingTest : public WindowTest {
protected:
    PaintingTest()
    {
        const auto text = Ref<FileType>::make();
        text->Name = "text/plain";
        FileType::declare({ text });
        application.addMenuHandler("Item", [this] {
            happened += "menu ";
            return true;
        });
        window->button.Action = [this] { happened += "button "; };
        window->box.Action = [this] { happened += "box "; };
        window->field.TextChange = [this] { happened += window->field.Text() + ' '; };
        window->canvas.AcceptFileDrop("text/plain");
        window->canvas.MouseDown = [this] {
            happened += "canvas ";
            return true;
        };
        window->canvas.DropObject = [this](const DragItem&) { happened += "drop "; };
        window->list.Change = [this] { happened += "list "; };
        window->onClose = [this] { happened += "close "; };
    }

    static void actOverAccessibility(const char* name, const QString& action)
    {
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget(name));
        QAccessibleActionInterface* actions = interface ? interface->actionInterface() : nullptr;
        ASSERT_TRUE(actions);
        actions->doAction(action);
    }

    /// Does what the user could do with each control.
    void useAllControls()
    {
        actOverAccessibility("button", "Press");
        actOverAccessibility("box", "Toggle");
        actOverAccessibility("canvas", "Press");
        QTest::keyClicks(widget("field"), "typed");
        menuBar.Lookup("Item").Choose();
    }

    void expectHappened(std::initializer_list<const char*> events) const
    {
        for (const char* event : events)
            EXPECT_NE(happened.find(event), std::string::npos) << event << "is missing in " << happened;
    }

    /// Sends the events of a drag of a list of addresses that ends over the canvas. Returns whether the drop
    /// was accepted.
    static bool drop(const QByteArray& addresses = "file:///file.txt")
    {
        QMimeData data;
        data.setData("text/uri-list", addresses);
        QDragEnterEvent enter({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QDragMoveEvent move({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QDropEvent event({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        for (QEvent* each : std::initializer_list<QEvent*>{ &enter, &move, &event })
            QCoreApplication::sendEvent(widget("canvas"), each);
        EXPECT_EQ(move.isAccepted(), event.isAccepted())
            << "what is shown during the drag holds for the drop";
        EXPECT_TRUE(enter.isAccepted() || !event.isAccepted());
        return event.isAccepted();
    }

    /// Runs `meanwhile` during the first painting of a handler, which then works for some more paintings.
    void workWith(const std::function<void()>& meanwhile)
    {
        runGuarded("handler", [&] {
            happened += "[";
            bool done = false;
            QTimer::singleShot(0, [&] {
                EXPECT_TRUE(isOnlyPainting());
                meanwhile();
                done = true;
            });
            workUntil([&] { return done; });
            // A press of a button over accessibility takes 100 ms.
            const EventCount paints(*widget("button"), QEvent::Paint);
            for (const int count : { 1, 2, 3 }) {
                widget("button")->update();
                workUntil([&] { return paints.count >= count; });
            }
            happened += "]";
        });
    }

    std::string happened; // in order
};

} // namespace

TEST_F(PaintingTest, eventsDuringAHandlerAreDeliveredAfterIt)
{
    Timer ticking("ticking", 0);
    ticking.Action = [&] {
        EXPECT_EQ(handlerDepth(), 1) << "no tick while another handler works";
        ticking.setEnabled(false);
        happened += "tick ";
    };
    ticking.setEnabled(true);
    workWith([&] {
        useAllControls();
        EXPECT_FALSE(window->box.Value()) << "the handler at work meets no change";
        EXPECT_EQ(window->field.Text(), "");
    });
    EXPECT_EQ(happened, "[]");
    Application::DoEvents(1000);
    EXPECT_TRUE(window->box.Value());
    expectHappened({ "button ", "box ", "typed ", "canvas ", "menu ", "tick " });
}

TEST_F(PaintingTest, aButtonThatTheHandlerDisablesIsNotPressedAfterwards)
{
    workWith([&] {
        window->button.Push();
        window->button.setEnabled(false);
    });
    Application::DoEvents(100);
    EXPECT_EQ(happened, "[]");
}

TEST_F(PaintingTest, aDropIsRefusedButAnEarlierOneIsKept)
{
    EXPECT_TRUE(drop());
    workWith([] { EXPECT_FALSE(drop()); });
    EXPECT_EQ(happened, "[]");
    Application::DoEvents(100);
    EXPECT_EQ(happened, "[]drop ");
}

TEST_F(PaintingTest, aDropGivesItsLocalItems)
{
    window->canvas.DropObject = [this](DragItem& item) {
        do {
            happened += item.FolderItemAvailable() ? item.FolderItem()->NativePath() + "|" : "none|";
        } while (item.NextItem());
    };
    const struct {
        const char* addresses;
        const char* paths; // empty if the drop is refused
    } cases[] = {
        { "file:///a.txt\r\nfile://localhost/b%20c\r\n", "/a.txt|/b c|" },
        { "# a comment\r\nhttps://example.org/x\r\nfile:///a\r\nmailto:a@b.org\r\n", "/a|" },
        { "file:///caf%E9/%FF.txt", "/caf\xE9/\xFF.txt|" },
        { "https://example.org/a.txt", "" },
        { "https://localhost/a.txt\r\ntrash:///b.txt", "" },
        { "file://elsewhere/a.txt", "" },
        { "# nothing", "" },
    };
    for (const auto& [addresses, paths] : cases) {
        happened.clear();
        EXPECT_EQ(drop(addresses), *paths != '\0') << addresses;
        Application::DoEvents(100);
        EXPECT_EQ(happened, paths) << addresses;
    }
}

TEST_F(PaintingTest, nothingChangesWhileADialogIsOpen)
{
    struct StandingDesktop : ScriptedDesktop {
        std::function<void()> meanwhile;
        void showMessage(std::string_view) override { meanwhile(); }
    } standing;
    standing.meanwhile = [&] {
        Timer ticking("ticking", 0);
        ticking.Action = [this] { happened += "tick "; };
        ticking.setEnabled(true);
        useAllControls();
        EXPECT_FALSE(drop());
        QTest::qWait(200); // a press of a button over accessibility takes 100 ms
        EXPECT_FALSE(widget("Test")->close());
    };
    runGuarded("handler", [&] {
        MsgBox("");
        EXPECT_EQ(happened, "");
        EXPECT_FALSE(window->box.Value());
    });
    Application::DoEvents(1000);
    EXPECT_FALSE(isOpen<TestWindow>());
    expectHappened({ "button ", "box ", "typed ", "menu ", "close " });
}

TEST_F(PaintingTest, theWindowClosesAfterTheHandler)
{
    workWith([&] {
        EXPECT_FALSE(widget("Test")->close());
        window->button.Push();
    });
    EXPECT_EQ(happened, "[]");
    EXPECT_TRUE(isOpen<TestWindow>());
    Application::DoEvents(100);
    EXPECT_EQ(happened, "[]close ") << "what was put off for its controls goes with it";
    EXPECT_FALSE(isOpen<TestWindow>());
}

TEST_F(PaintingTest, rowsAddedMeanwhileAreShown)
{
    auto* view = widget<QListView>("list");
    runGuarded("handler", [&] {
        window->list.AddRow("row");
        workUntil([&] { return view->model()->rowCount() == 1; });
        view->setCurrentIndex(view->model()->index(0, 0));
        happened.clear();
        window->list.DeleteAllRows();
        workUntil([&] { return view->model()->rowCount() == 0; });
        EXPECT_EQ(happened, "") << "that the selection has gone is told afterwards";
    });
    Application::DoEvents(100);
    EXPECT_EQ(happened, "list ");
}

TEST_F(PaintingTest, pagesThatComeFasterThanTheyAreWaitedForDoNotKeepTheWindowFromPainting)
{
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    ASSERT_EQ(::write(pipe[1], "page", 4), 4);
    bool isPainted = false;
    QTimer::singleShot(0, [&] { isPainted = true; });
    workUntil([&] { return isPainted; },
        [&] { EXPECT_TRUE(waitForReader(pipe[0], POLLIN, std::chrono::seconds(1))); });
    std::ranges::for_each(pipe, ::close);
}

TEST_F(PaintingTest, theWaitCursorVanishesInTheNextTurn)
{
    runGuarded("handler", [] {
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        workUntil([] { return QGuiApplication::overrideCursor() != nullptr; });
        Application::DoEvents(10);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    });
}

TEST_F(PaintingTest, aPatternThatTakesLongLetsTheProgramEnd)
{
    runGuarded("handler", [] {
        QTimer::singleShot(0, [] { std::raise(SIGTERM); });
        RegEx expression;
        expression.setSearchPattern("a*a*a*@");
        std::string text;
        for (int i = 0; i < 100'000; ++i)
            text += std::string(240, 'a') + '!';
        expression.matches(text);
    });
    EXPECT_EQ(happened, "close ");
}

TEST_F(PaintingTest, aSignalToEndEndsTheHandler)
{
    workWith([] { std::raise(SIGTERM); });
    EXPECT_EQ(happened, "[close ");
}

TEST_F(PaintingTest, theEndOfTheSessionEndsTheHandler)
{
    workWith([] {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
    });
    EXPECT_EQ(happened, "[close ");
}

} // namespace quilvane
