// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/keepWindowPainted.h"

#include "framework/Application.h"
#include "framework/EventGuard.h"
#include "framework/controls/Canvas.h"
#include "framework/controls/CheckBox.h"
#include "framework/controls/Listbox.h"
#include "framework/controls/MenuBar.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/TextField.h"
#include "framework/controls/Window.h"
#include "framework/dialogs/dialogs.h"
#include "framework/files/FileType.h"
#include "framework/threads/Timer.h"
#include "support/ScriptedDesktop.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QListView>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <csignal>

namespace quilvane {

namespace {

std::string happened; // in this test, in order

class PaintedMenuBar : public MenuBar {
public:
    PaintedMenuBar()
    {
        append(std::make_unique<MenuItem>("Menu", "&Menu"))
            .append(std::make_unique<MenuItem>("Item", "&Item"));
    }
};

class PaintedWindow : public Window {
public:
    PushButton button{ *this, "button" };
    CheckBox box{ *this, "box" };
    TextField field{ *this, "field" };
    Canvas canvas{ *this, "canvas" };
    Listbox list{ *this, "list" };

private:
    void Layout() override
    {
        setProperties({ .title = "Painted", .width = 300, .height = 300 });
        constexpr ControlRow table[] = {
            { "button", ControlKind::PushButton, "Button", 0, 0, 80, 20, true, true, 0 },
            { "box", ControlKind::CheckBox, "Box", 0, 30, 100, 20, true, true, 1 },
            { "field", ControlKind::TextField, "", 0, 60, 100, 20, true, true, 2 },
            { "canvas", ControlKind::Canvas, "", 0, 90, 100, 20, true, true, 3 },
            { "list", ControlKind::Listbox, "", 0, 120, 100, 100, true, true, 4 },
        };
        place(table);
        button.Action = [] { happened += "button "; };
        box.Action = [] { happened += "box "; };
        field.TextChange = [this] { happened += field.Text() + ' '; };
        canvas.MouseDown = [] {
            happened += "canvas ";
            return true;
        };
        canvas.DropObject = [](const DragItem&) { happened += "drop "; };
        list.Change = [] { happened += "list "; };
    }
    void Event_Close() override { happened += "close "; }
};

QWidget* widget(const char* name)
{
    for (QWidget* each : QApplication::allWidgets()) {
        if (each->objectName() == name)
            return each;
    }
    return nullptr;
}

void actOverAccessibility(const char* name, const QString& action)
{
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget(name));
    QAccessibleActionInterface* actions = interface ? interface->actionInterface() : nullptr;
    ASSERT_TRUE(actions);
    actions->doAction(action);
}

/// Sends the events of a drag of a list of addresses that ends over the canvas. Returns whether the drop was
/// accepted.
bool drop(const QByteArray& addresses = "file:///file.txt")
{
    QMimeData data;
    data.setData("text/uri-list", addresses);
    QDragEnterEvent enter({}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QDragMoveEvent move({}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QDropEvent event({}, Qt::CopyAction, &data, Qt::LeftButton, {});
    for (QEvent* each :
        { static_cast<QEvent*>(&enter), static_cast<QEvent*>(&move), static_cast<QEvent*>(&event) })
        QCoreApplication::sendEvent(widget("canvas"), each);
    EXPECT_EQ(move.isAccepted(), event.isAccepted()) << "what is shown during the drag holds for the drop";
    EXPECT_TRUE(enter.isAccepted() || !event.isAccepted());
    return event.isAccepted();
}

/// Works like a long handler until `done`.
template <typename Done>
void workUntil(Done done)
{
    constexpr qint64 patience = 20'000; // ms; only a failure takes so long
    QElapsedTimer time;
    time.start();
    while (!done() && time.elapsed() < patience)
        keepWindowPainted();
    EXPECT_TRUE(done());
}

/// Counts a widget's paint events.
class PaintCount : public QObject {
public:
    explicit PaintCount(QWidget& widget) { widget.installEventFilter(this); }

    int count = 0;

private:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

class PaintingTest : public testing::Test {
protected:
    PaintingTest()
    {
        happened.clear();
        const auto text = Ref<FileType>::make();
        text->Name = "text/plain";
        FileType::declare({ text });
        application.setMenuBar(menuBar);
        application.addMenuHandler("Item", [] {
            happened += "menu ";
            return true;
        });
        window = &implicit<PaintedWindow>();
        window->canvas.AcceptFileDrop("text/plain");
        EXPECT_TRUE(QTest::qWaitForWindowActive(widget("Painted")));
    }
    ~PaintingTest() override
    {
        application.Quit();
        Application::DoEvents(100);
    }

    /// Runs `meanwhile` during the first painting of a handler, which then works for some more paintings.
    static void workWith(const std::function<void()>& meanwhile)
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
            PaintCount paints(*widget("button"));
            for (const int count : { 1, 2, 3 }) {
                widget("button")->update();
                workUntil([&] { return paints.count >= count; });
            }
            happened += "]";
        });
    }

    static void quitsWith(const std::function<void()>& ask)
    {
        runGuarded("handler", [&] {
            QTimer::singleShot(0, [&] {
                EXPECT_TRUE(isOnlyPainting());
                ask();
            });
            workUntil([] { return false; });
        });
        EXPECT_EQ(happened, "close ");
        EXPECT_FALSE(isOpen<PaintedWindow>());
    }

    PaintedMenuBar menuBar;
    ScriptedDesktop desktop;
    Application application;
    PaintedWindow* window = nullptr;
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
        actOverAccessibility("button", "Press");
        actOverAccessibility("box", "Toggle");
        EXPECT_FALSE(window->box.Value()) << "the handler at work meets no change";
        QTest::keyClicks(widget("field"), "typed");
        EXPECT_EQ(window->field.Text(), "");
        actOverAccessibility("canvas", "Press");
        menuBar.Lookup("Item").Choose();
    });
    EXPECT_EQ(happened, "[]");
    Application::DoEvents(1000);
    EXPECT_TRUE(window->box.Value());
    for (const char* event : { "button ", "box ", "typed ", "canvas ", "menu ", "tick " })
        EXPECT_NE(happened.find(event), std::string::npos) << event << "is missing in " << happened;
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
    window->canvas.DropObject = [](DragItem& item) {
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
    class StandingDesktop : public ScriptedDesktop {
    public:
        explicit StandingDesktop(std::function<void()> meanwhile)
            : m_meanwhile(std::move(meanwhile))
        {
        }
        void showMessage(std::string_view) override { m_meanwhile(); }

    private:
        std::function<void()> m_meanwhile;
    };
    const StandingDesktop standing([&] {
        Timer ticking("ticking", 0);
        ticking.Action = [] { happened += "tick "; };
        ticking.setEnabled(true);
        actOverAccessibility("button", "Press");
        actOverAccessibility("box", "Toggle");
        QTest::keyClicks(widget("field"), "typed");
        menuBar.Lookup("Item").Choose();
        EXPECT_FALSE(drop());
        QTest::qWait(200); // a press of a button over accessibility takes 100 ms
        EXPECT_FALSE(widget("Painted")->close());
    });
    runGuarded("handler", [&] {
        MsgBox("");
        EXPECT_EQ(happened, "");
        EXPECT_FALSE(window->box.Value());
    });
    Application::DoEvents(1000);
    EXPECT_FALSE(isOpen<PaintedWindow>());
    for (const char* event : { "button ", "box ", "typed ", "menu ", "close " })
        EXPECT_NE(happened.find(event), std::string::npos) << event << "is missing in " << happened;
}

TEST_F(PaintingTest, theWindowClosesAfterTheHandler)
{
    workWith([&] {
        EXPECT_FALSE(widget("Painted")->close());
        window->button.Push();
    });
    EXPECT_EQ(happened, "[]");
    EXPECT_TRUE(isOpen<PaintedWindow>());
    Application::DoEvents(100);
    EXPECT_EQ(happened, "[]close ") << "what was put off for its controls goes with it";
    EXPECT_FALSE(isOpen<PaintedWindow>());
}

TEST_F(PaintingTest, rowsAddedMeanwhileAreShown)
{
    auto* view = qobject_cast<QListView*>(widget("list"));
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

TEST_F(PaintingTest, theWaitCursorVanishesInTheNextTurn)
{
    runGuarded("handler", [] {
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        workUntil([] { return QGuiApplication::overrideCursor() != nullptr; });
        Application::DoEvents(10);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    });
}

TEST_F(PaintingTest, aSignalToEndEndsTheHandler)
{
    quitsWith([] { std::raise(SIGTERM); });
}

TEST_F(PaintingTest, theEndOfTheSessionEndsTheHandler)
{
    quitsWith([] {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
    });
}

} // namespace quilvane
