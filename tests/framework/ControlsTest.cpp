// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/WindowTest.h"

#include "framework/EventGuard.h"
#include "framework/exceptions.h"
#include "framework/threads/Timer.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>

namespace quilvane {

namespace {

/// A window without controls.
class OtherWindow : public Window {
    void Layout() override { setProperties({ .title = "Other", .width = 100, .height = 100 }); }
};

/// A text that another program has put into the clipboard. To get it may take long.
class ForeignText : public QMimeData {
public:
    mutable int asked = 0;

    QStringList formats() const override { return { "text/plain" }; }

protected:
    QVariant retrieveData(const QString&, QMetaType) const override
    {
        ++asked;
        return "text";
    }
};

using ControlsTest = WindowTest;

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
    QWidget& box = *widget("box");
    const EventCount hidings(box, QEvent::Hide);
    window->box.setVisible(false);
    window->box.setVisible(true);
    Application::DoEvents(0);
    EXPECT_EQ(hidings.count, 0);
    window->box.setVisible(false);
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
    QTest::mouseClick(widget("box"), Qt::LeftButton, {}, { 8, 10 });
    QTest::keyClick(widget<QLineEdit>("field"), 'X');
    EXPECT_EQ(events, "off textX ");

    widget<QLineEdit>("field")->insert(QString(1'000'000, 'a'));
    EXPECT_EQ(window->field.Text().size(), 32'767U) << "what the user pastes has a limit";
    window->field.setText(std::string(100'000, 'a'));
    EXPECT_EQ(window->field.Text().size(), 100'000U);
    events.clear();
    window->field.setText("short");
    EXPECT_EQ(events, "short ");
    widget<QLineEdit>("field")->insert(QString(1'000'000, 'a'));
    EXPECT_EQ(window->field.Text().size(), 32'767U) << "also after a longer text";
}

TEST_F(ControlsTest, keysReachTheFieldFirstAndThenTheWindowsButtons)
{
    std::string events;
    window->parked.Action = [&] { events += "default "; };
    window->field.KeyDown = [&](const std::string& key) {
        events += key == "\r" ? "return " : key == "\x03" ? "enter " : key + " ";
        return key == "x";
    };
    EXPECT_EQ(widget("parked"), nullptr) << "the user can't reach it";
    auto* edit = widget<QLineEdit>("field");
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
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(events, "") << "a closed window has no default button any more";
}

TEST_F(ControlsTest, theEditMenuWorksOnTheControlThatHadTheFocus)
{
    auto* const foreign = new ForeignText;
    QApplication::clipboard()->setMimeData(foreign);
    auto* edit = widget<QLineEdit>("field");
    edit->setFocus();
    edit->setText("some text");
    edit->setSelection(4, -4);
    EnableMenuItems();
    EXPECT_TRUE(menuBar.Lookup("EditPaste").Enabled());
    EXPECT_EQ(foreign->asked, 0);

    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(edit, &byKey);
    auto* contextMenu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(contextMenu, nullptr);
    EXPECT_EQ(contextMenu->actions().size(), 6);
    EXPECT_EQ(foreign->asked, 0) << "its owner may not answer";
    contextMenu->close();

    QTest::keyClick(widget("Test"), Qt::Key_E, Qt::AltModifier);
    auto* menu = widget<QMenu>("EditMenu");
    ASSERT_NE(menu, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->isVisible(); }));
    QTest::keyClick(menu, Qt::Key_Return); // on Cut
    EXPECT_EQ(QApplication::clipboard()->text(), "some");
    EXPECT_EQ(edit->text(), " text");
}

TEST_F(ControlsTest, aWindowThatItsHandlerClosesIsNeverShown)
{
    window->box.Action = [] { implicit<OtherWindow>().Close(); };
    window->box.setValue(true);
    auto* closed = widget("Other");
    ASSERT_NE(closed, nullptr);
    EXPECT_FALSE(closed->testAttribute(Qt::WA_WState_Created));
    const EventCount shows(*closed, QEvent::Show);
    Application::DoEvents(20);
    EXPECT_EQ(shows.count, 0);
    EXPECT_EQ(widget("Other"), nullptr);
}

TEST_F(ControlsTest, labelStaysReadableOnDark)
{
    window->label.setTextColor(0x803F02);
    auto* label = widget<QLabel>("label");
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
    const auto* label = widget<QLabel>("label");
    const int full = label->font().pixelSize();
    window->label.setText("short text");
    EXPECT_EQ(label->font().pixelSize(), full);
    window->label.setText("a text of some length");
    EXPECT_LT(label->font().pixelSize(), full);
    EXPECT_LE(label->sizeHint().width(), 100);
    EXPECT_EQ(label->toolTip(), "");
    window->label.setHelpText("some <i> help");
    EXPECT_EQ(label->accessibleDescription(), "some <i> help");

    window->label.setText("a text much too long <b> for one line");
    EXPECT_LE(label->sizeHint().width(), 100);
    EXPECT_TRUE(label->text().contains(QChar(0x2026)));
    EXPECT_EQ(label->accessibleName(), "a text much too long <b> for one line");
    for (const char* part : { "&lt;b&gt;", "some &lt;i&gt; help" })
        EXPECT_TRUE(label->toolTip().contains(part))
            << part << " is missing: " << label->toolTip().toStdString();
    EXPECT_EQ(label->geometry(), QRect(0, 270, 100, 20));

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
    EXPECT_EQ(widget<QLabel>("label"), nullptr) << "gone, once no handler stands in it";
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
    // If it waited for the whole time, this would take a day.
    Application::DoEvents(86'400'000);
    EXPECT_EQ(ticks, 3);
}

} // namespace quilvane
