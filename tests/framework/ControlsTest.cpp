// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Application.h"
#include "framework/EventGuard.h"
#include "framework/controls/CheckBox.h"
#include "framework/controls/Label.h"
#include "framework/controls/Listbox.h"
#include "framework/controls/MenuBar.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/Slider.h"
#include "framework/controls/TextField.h"
#include "framework/controls/Window.h"
#include "framework/exceptions.h"
#include "framework/threads/Timer.h"
#include "support/ScriptedDesktop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QTest>

namespace quilvane {

namespace {

class TestMenuBar : public MenuBar {
public:
    TestMenuBar()
    {
        MenuItem& menu = append(std::make_unique<MenuItem>("EditMenu", "&Edit"));
        for (const char* name : { "EditCopy", "EditPaste" })
            menu.append(std::make_unique<MenuItem>(name, name));
    }
};

class TestWindow : public Window {
public:
    PushButton parked{ *this, "parked" };
    Listbox list{ *this, "list" };
    CheckBox box{ *this, "box" };
    TextField field{ *this, "field" };
    Label label{ *this, "label" };
    Slider slider{ *this, "slider" };

    template <typename Widget>
    static Widget* widget(const char* name)
    {
        for (QWidget* each : QApplication::allWidgets()) {
            if (each->objectName() == name)
                return qobject_cast<Widget*>(each);
        }
        return nullptr;
    }

private:
    void Layout() override
    {
        setProperties({ .title = "Test", .width = 300, .height = 300 });
        constexpr ControlRow table[] = {
            { "parked", ControlKind::PushButton, "Parked", 10, -60, 80, 20, true, true, 4 },
            { "list", ControlKind::Listbox, "", 0, 0, 200, 200, true, true, 3 },
            { "box", ControlKind::CheckBox, "Box", 0, 210, 100, 20, true, true, 2 },
            { "field", ControlKind::TextField, "", 0, 240, 100, 20, true, true, 1 },
            { "label", ControlKind::Label, "", 0, 270, 100, 20, true, true, 0 },
            { "slider", ControlKind::Slider, "", 0, -100, 100, 20, true, true, 0 },
        };
        place(table);
        parked.setDefault();
        box.setFocus();
    }
};

/// A window without controls.
class OtherWindow : public Window {
    void Layout() override { setProperties({ .title = "Other", .width = 100, .height = 100 }); }
};

/// A text that another program has put into the clipboard. To get it may take long.
class ForeignText : public QMimeData {
public:
    explicit ForeignText(int& asked)
        : m_asked(asked)
    {
    }
    bool hasFormat(const QString& format) const override { return format == "text/plain"; }
    QStringList formats() const override { return { "text/plain" }; }

protected:
    QVariant retrieveData(const QString&, QMetaType) const override
    {
        ++m_asked;
        return "text";
    }

private:
    int& m_asked;
};

class ControlsTest : public testing::Test {
protected:
    ControlsTest()
    {
        application.setMenuBar(menuBar);
        window = &implicit<TestWindow>();
        EXPECT_TRUE(QTest::qWaitForWindowActive(TestWindow::widget<QWidget>("Test")));
    }
    ~ControlsTest() override
    {
        application.Quit();
        Application::DoEvents(100);
    }

    TestMenuBar menuBar;
    ScriptedDesktop desktop;
    Application application;
    TestWindow* window = nullptr;
};

} // namespace

TEST_F(ControlsTest, aHandlerThatThrowsEndsAlone)
{
    std::string order;
    using Words = std::function<std::string(const std::string&)>;
    const Scoped words(setFailureWords, Words(), [&](const std::string& handler) {
        order += handler + ' ';
        return std::string("The list is untouched.");
    });
    window->box.Action = [&] {
        order += "inner ";
        throw IOException("the reason");
    };
    window->parked.Action = [&] {
        window->box.setValue(true);
        order += "outer";
    };
    desktop.willReport({ "the reason", "The list is untouched." });
    window->parked.Push();
    EXPECT_EQ(order, "inner box_Action outer");
    EXPECT_EQ(handlerDepth(), 0);

    setFailureWords([](const std::string&) -> std::string { throw IOException("the words' own"); });
    desktop.willReport({ "the reason" });
    testing::internal::CaptureStderr();
    window->box.setValue(false);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("box_Action: the reason"), std::string::npos);
    EXPECT_NE(log.find("the words' own"), std::string::npos);

    setFailureWords([](const std::string&) -> std::string { throw QuitUnwinding(); });
    window->box.setValue(true); // no report: the program is quitting
}

TEST_F(ControlsTest, aControlThatIsHiddenForAMomentStaysVisible)
{
    struct HideCounter : QObject {
        int hides = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            hides += event->type() == QEvent::Hide;
            return false;
        }
    } counter;
    QWidget& box = *TestWindow::widget<QWidget>("box");
    box.installEventFilter(&counter);
    window->box.setVisible(false);
    window->box.setVisible(true);
    Application::DoEvents(0);
    EXPECT_EQ(counter.hides, 0);
    window->box.setVisible(false);
    EXPECT_FALSE(window->box.Visible());
    Application::DoEvents(0);
    EXPECT_FALSE(box.isVisible());
}

TEST_F(ControlsTest, changesByCodeFireTheUsersEvents)
{
    std::string events;
    window->box.Action = [&] { events += window->box.Value() ? "on " : "off "; };
    window->field.TextChange = [&] { events += window->field.Text() + " "; };
    window->slider.ValueChanged = [&] { events += std::to_string(window->slider.Value()) + " "; };
    window->box.setValue(true);
    window->box.setValue(true);
    window->field.setText("text");
    window->field.setText("text");
    window->slider.setValue(7);
    window->slider.setMaximum(3);
    EXPECT_EQ(window->slider.Value(), 3);
    window->slider.setMaximum(-1);
    EXPECT_EQ(window->slider.Value(), 0);
    EXPECT_EQ(events, "on text 7 ");

    events.clear();
    QTest::mouseClick(TestWindow::widget<QWidget>("box"), Qt::LeftButton, {}, { 8, 10 });
    QTest::keyClick(TestWindow::widget<QLineEdit>("field"), 'X');
    EXPECT_EQ(events, "off textX ");

    TestWindow::widget<QLineEdit>("field")->insert(QString(1'000'000, 'a'));
    EXPECT_EQ(window->field.Text().size(), 32'767U) << "what the user pastes has a limit";
    window->field.setText(std::string(100'000, 'a'));
    EXPECT_EQ(window->field.Text().size(), 100'000U);
}

TEST_F(ControlsTest, aParkedControlWorksButCannotBeReached)
{
    int presses = 0;
    window->parked.Action = [&] { ++presses; };
    window->parked.Push();
    EXPECT_EQ(presses, 1);
    EXPECT_EQ(TestWindow::widget<QWidget>("parked"), nullptr);
    window->parked.setEnabled(false);
    window->parked.Push();
    EXPECT_EQ(presses, 1);
}

TEST_F(ControlsTest, keysReachTheFieldFirstAndThenTheWindowsButtons)
{
    std::string events;
    window->parked.Action = [&] { events += "default "; };
    window->field.KeyDown = [&](const std::string& key) {
        events += key == "\r" ? "return " : key == "\x03" ? "enter " : key + " ";
        return key == "x";
    };
    auto* edit = TestWindow::widget<QLineEdit>("field");
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::keyClick(edit, Qt::Key_Enter, Qt::KeypadModifier);
    QTest::keyClicks(edit, "xy");
    EXPECT_EQ(events, "return default enter default x y ");
    EXPECT_EQ(window->field.Text(), "y") << "what the handler takes is not typed";

    events.clear();
    window->parked.setCancel();
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_EQ(events, "\x1b default ");
    events.clear();
    window->field.KeyDown = [](const std::string&) -> bool { throw IOException("the reason"); };
    desktop.willReport({ "the reason" });
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(events, "") << "a handler that fails has had the key";

    window->field.KeyDown = [&](const std::string&) {
        window->Close();
        return false;
    };
    events.clear();
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(events, "") << "a closed window has no default button any more";
}

TEST_F(ControlsTest, theEditMenuWorksOnTheControlThatHadTheFocus)
{
    int asked = 0;
    QApplication::clipboard()->setMimeData(new ForeignText(asked));
    auto* edit = TestWindow::widget<QLineEdit>("field");
    edit->setFocus();
    edit->setText("some text");
    edit->setSelection(4, -4);
    EnableMenuItems();
    EXPECT_TRUE(menuBar.Lookup("EditPaste").Enabled());
    EXPECT_EQ(asked, 0) << "of the clipboard";

    QTest::keyClick(TestWindow::widget<QWidget>("Test"), Qt::Key_E, Qt::AltModifier);
    auto* menu = TestWindow::widget<QMenu>("EditMenu");
    ASSERT_NE(menu, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->isVisible(); }));
    EXPECT_TRUE(menuBar.Lookup("EditCopy").Enabled());
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(QApplication::clipboard()->text(), "some");

    window->box.setFocus();
    QTest::keyClick(TestWindow::widget<QWidget>("Test"), Qt::Key_E, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->isVisible(); }));
    EXPECT_FALSE(menuBar.Lookup("EditPaste").Enabled());
    menu->close();
}

TEST_F(ControlsTest, aWindowThatItsHandlerClosesIsNeverShown)
{
    window->box.Action = [] { implicit<OtherWindow>().Close(); };
    window->box.setValue(true);
    const auto* closed = TestWindow::widget<QWidget>("Other");
    ASSERT_NE(closed, nullptr);
    EXPECT_FALSE(closed->testAttribute(Qt::WA_WState_Created));
    Application::DoEvents(20);
    EXPECT_EQ(TestWindow::widget<QWidget>("Other"), nullptr);
    window->box.Action = [] { implicit<OtherWindow>(); };
    window->box.setValue(false);
    EXPECT_TRUE(QTest::qWaitFor([] {
        const auto* other = TestWindow::widget<QWidget>("Other");
        return other && other->isVisible();
    })) << "unless the handler leaves it open";
}

TEST_F(ControlsTest, labelStaysReadableOnDark)
{
    window->label.setTextColor(0x803F02);
    auto* label = TestWindow::widget<QLabel>("label");
    const auto colorOn = [label](QRgb surface) {
        const Scoped palette([](const QPalette& p) { QApplication::setPalette(p); }, QApplication::palette(),
            QPalette(QColor(surface), QColor(surface)));
        Application::DoEvents(100);
        return label->palette().color(QPalette::WindowText);
    };
    EXPECT_EQ(colorOn(0xf0f0f0), QColor(0x803F02));
    EXPECT_GT(colorOn(0x2b2b2b).lightness(), QColor(0x803F02).lightness() + 50);

    window->label.setText("<b>a</b>\nb");
    EXPECT_EQ(label->text(), QString::fromUtf8("<b>a</b>\u21b5b"));
}

TEST_F(ControlsTest, labelFitsItsTextIntoTheRoom)
{
    const auto* label = TestWindow::widget<QLabel>("label");
    const int full = label->font().pixelSize();
    const QRect place(0, 270, 100, 20);

    window->label.setText("short text");
    EXPECT_EQ(label->font().pixelSize(), full);
    window->label.setText("a text of some length");
    EXPECT_LT(label->font().pixelSize(), full);
    EXPECT_LE(label->sizeHint().width(), 100);
    EXPECT_EQ(label->toolTip(), "");
    window->label.setHelpText("some <i> help");
    EXPECT_EQ(label->accessibleDescription(), "some <i> help");

    const std::string longer = "a text much too long <b>";
    window->label.setText(longer + " for one line");
    EXPECT_LE(label->sizeHint().width(), 100);
    EXPECT_TRUE(label->text().contains(QChar(0x2026)));
    EXPECT_EQ(label->accessibleName(), "a text much too long <b> for one line");
    for (const char* part : { "&lt;b&gt;", "some &lt;i&gt; help" })
        EXPECT_TRUE(label->toolTip().contains(part))
            << part << " is missing: " << label->toolTip().toStdString();
    EXPECT_EQ(label->geometry(), place);

    window->label.setRoom(90, 30);
    EXPECT_EQ(label->geometry(), QRect(0, 240, 90, 50));
    EXPECT_EQ(label->text(), "a text much too long <b> for one line");
    EXPECT_FALSE(label->toolTip().contains("&lt;b&gt;"));
    window->label.setText("short");
    EXPECT_EQ(label->geometry(), QRect(0, 270, 90, 20));
    EXPECT_EQ(label->font().pixelSize(), full);
    EXPECT_TRUE(label->toolTip().contains("help")) << "the help outlasts a change of the text";
    EXPECT_FALSE(label->testAttribute(Qt::WA_TransparentForMouseEvents)) << "or nobody sees it";
    window->label.setHelpText({});
    EXPECT_EQ(label->toolTip(), "");
    EXPECT_TRUE(label->testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST_F(ControlsTest, aWindowMayCloseItselfAndGoOn)
{
    window->parked.Action = [&] {
        window->Close();
        window->Close();
        EXPECT_FALSE(isOpen<TestWindow>());
        Application::DoEvents(20);
        window->label.setText("still here");
    };
    window->parked.Push();
    Application::DoEvents(100);
    EXPECT_EQ(TestWindow::widget<QLabel>("label"), nullptr) << "gone, once no handler stands in it";
}

TEST_F(ControlsTest, doEventsReturnsWhenNothingIsLeftToDo)
{
    Timer timer("timer", 0);
    int ticks = 0;
    timer.Action = [&] {
        if (++ticks == 3)
            timer.setEnabled(false);
    };
    timer.setEnabled(true);
    {
        const EventsHeld dialog;
        Application::DoEvents(20);
        EXPECT_EQ(ticks, 0) << "not while a dialog stands";
    }
    // If it waited for the whole time, this would take a day.
    Application::DoEvents(86'400'000);
    EXPECT_EQ(ticks, 3);
}

} // namespace quilvane
