// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Application.h"
#include "framework/controls/Canvas.h"
#include "framework/controls/CheckBox.h"
#include "framework/controls/Label.h"
#include "framework/controls/Listbox.h"
#include "framework/controls/MenuBar.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/Slider.h"
#include "framework/controls/TextField.h"
#include "framework/controls/Window.h"
#include "support/ScriptedDesktop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

namespace quilvane {

constexpr const char* editCommandNames[]
    = { "EditCut", "EditCopy", "EditPaste", "EditClear", "EditSelectAll", "EditUndo" };

class TestMenuBar : public MenuBar {
public:
    TestMenuBar()
    {
        MenuItem& menu = append(std::make_unique<MenuItem>("EditMenu", "&Edit"));
        for (const char* name : editCommandNames)
            menu.append(std::make_unique<MenuItem>(name, name));
        menu.append(std::make_unique<MenuItem>("Item", "Item"));
    }
};

/// A window with a control of each kind.
class TestWindow : public Window {
public:
    PushButton button{ *this, "button" };
    PushButton parked{ *this, "parked" };
    Listbox list{ *this, "list" };
    CheckBox box{ *this, "box" };
    TextField field{ *this, "field" };
    Label label{ *this, "label" };
    Slider slider{ *this, "slider" };
    Canvas canvas{ *this, "canvas" };

    std::function<void()> onClose = [] {};

private:
    void Layout() override
    {
        setProperties({ .title = "Test", .width = 300, .height = 300 });
        constexpr ControlRow table[] = {
            { "button", ControlKind::PushButton, "Button", 200, 0, 80, 20, true, true, 4 },
            { "parked", ControlKind::PushButton, "Parked", 10, -60, 80, 20, true, true, 4 },
            { "list", ControlKind::Listbox, "", 0, 0, 200, 200, true, true, 3 },
            { "box", ControlKind::CheckBox, "Box", 0, 210, 100, 20, true, true, 2 },
            { "field", ControlKind::TextField, "", 0, 240, 100, 20, true, true, 1 },
            { "label", ControlKind::Label, "", 0, 270, 100, 20, true, true, 0 },
            { "slider", ControlKind::Slider, "", 0, -100, 100, 20, true, true, 0 },
            { "canvas", ControlKind::Canvas, "", 200, 100, 100, 20, true, true, 5 },
        };
        place(table);
        parked.setDefault();
        box.setFocus();
    }
    void Event_Close() override { onClose(); }
};

/// A program with that window.
class WindowTest : public testing::Test {
protected:
    WindowTest()
    {
        application.setMenuBar(menuBar);
        window = &implicit<TestWindow>();
        EXPECT_TRUE(QTest::qWaitForWindowActive(widget("Test")));
    }
    void TearDown() override
    {
        application.Quit();
        Application::DoEvents(100);
    }

    /// The widget of a control, or the frame of a window. Null if there is none.
    template <typename Widget = QWidget>
    static Widget* widget(const char* name)
    {
        for (QWidget* each : QApplication::allWidgets()) {
            if (each->objectName() == name)
                return qobject_cast<Widget*>(each);
        }
        return nullptr;
    }

    TestMenuBar menuBar;
    ScriptedDesktop desktop;
    Application application;
    TestWindow* window = nullptr;
};

/// Counts a widget's events of one type.
class EventCount : public QObject {
public:
    EventCount(QWidget& widget, QEvent::Type type)
        : m_type(type)
    {
        widget.installEventFilter(this);
    }

    int count = 0;

private:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == m_type;
        return false;
    }

    QEvent::Type m_type;
};

} // namespace quilvane
