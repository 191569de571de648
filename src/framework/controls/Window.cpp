// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Window.h"

#include "framework/Application.h"
#include "framework/EventGuard.h"
#include "framework/controls/MenuBar.h"
#include "framework/controls/PushButton.h"
#include "framework/internal/Announcement.h"
#include "framework/internal/Native.h"
#include "framework/internal/WindowNative.h"
#include "framework/internal/qtText.h"
#include "framework/internal/windowScale.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontInfo>
#include <QKeyEvent>
#include <QMenuBar>
#include <QPixmap>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTimer>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace quilvane {

namespace {

/// The frame of a window on the screen. When the user closes it, it calls Window::Close().
class Frame : public QMainWindow {
public:
    explicit Frame(Window& window)
        : m_window(window)
    {
    }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        const bool later = putOff(&m_window, [this] { m_window.Close(); });
        event->setAccepted(!later);
        if (!later)
            m_window.Close();
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            m_window.pressDefault();
        else if (event->key() == Qt::Key_Escape)
            m_window.pressCancel();
        else
            QMainWindow::keyPressEvent(event);
    }

private:
    Window& m_window;
};

/// The place on the screen of the last open window when it closed, for the next window.
std::optional<QPoint> placeOfLastWindow;

constexpr int smallestSide = 64;
constexpr int largestSide = 32000;

} // namespace

int Window::Native::menuBarHeight() const
{
    const QWidget* bar = frame->menuWidget();
    return bar ? bar->sizeHint().height() : 0;
}

void Window::Native::scaleToUserAndScreen(const QSize& contentSize)
{
    const auto setTextSize = [this](int pixels) {
        QFont font = QApplication::font();
        font.setPixelSize(pixels);
        frame->setFont(font);
    };
    setTextSize(designTextSize);
    const QSize room = roomOnScreen(*frame->screen());
    const WindowScale scale = windowScale(
        QFontInfo(QApplication::font()).pixelSize(), contentSize + QSize(0, menuBarHeight()), room);
    unit = scale.unit;
    setTextSize(scaled(designTextSize));

    const QSize scaledSize(scaled(contentSize.width()), scaled(contentSize.height()));
    QSize frameSize = scaledSize + QSize(0, menuBarHeight());
    if (scale.scrolls) {
        auto* area = new QScrollArea;
        area->setFrameShape(QFrame::NoFrame);
        area->setFocusPolicy(Qt::NoFocus);
        // A fixed size, so that the user can't scroll to what lies outside of it.
        content->setFixedSize(scaledSize);
        area->setWidget(frame->takeCentralWidget());
        frame->setCentralWidget(area);
        // At a fractional scale the frame may come out a pixel smaller.
        const int scrollBar = frame->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 1;
        frameSize = (frameSize + QSize(scrollBar, scrollBar)).boundedTo(room);
    }
    frame->resize(frameSize);
}

Window::Window()
    : m_native(std::make_unique<Native>())
{
    m_native->frame = std::make_unique<Frame>(*this);
    m_native->content = new QWidget;
    m_native->frame->setCentralWidget(m_native->content);
}

Window::~Window()
{
    forgetPutOff(this);
}

void Window::Show()
{
    QMainWindow& frame = *m_native->frame;
    if (frame.isMinimized())
        frame.showNormal();
    else
        frame.show();
    frame.raise();
    frame.activateWindow();
}

void Window::Close()
{
    if (m_closed)
        return;
    m_closed = true;
    for (const RectControl* each : m_controls)
        forgetPutOff(each);
    m_native->frame->hide();
    runGuarded("Event_Close of " + Title(), [this] { Event_Close(); });
    WindowList::instance().closed(*this);
}

std::string Window::Title() const
{
    return fromQt(m_native->frame->windowTitle());
}

void Window::savePicture(const std::string& path) const
{
    if (!m_native->frame->grab().save(toQt(path), "PNG"))
        throw std::runtime_error("The picture " + path + " could not be written.");
}

void Window::Announce(std::string_view text)
{
    if (!m_native->announcement)
        m_native->announcement = new Announcement(*m_native->frame);
    m_native->announcement->say(toQt(text));
}

RectControl& Window::control(std::string_view name) const
{
    const auto found = std::find_if(m_controls.begin(), m_controls.end(),
        [name](const RectControl* each) { return each->Name() == name; });
    if (found == m_controls.end())
        throw std::logic_error("no control named " + std::string(name));
    return **found;
}

void Window::pressDefault()
{
    if (m_defaultButton && !m_closed)
        m_defaultButton->Push();
}

void Window::pressCancel()
{
    if (m_cancelButton && !m_closed)
        m_cancelButton->Push();
}

void Window::setProperties(const WindowProperties& properties)
{
    QMainWindow& frame = *m_native->frame;
    frame.setWindowTitle(toQt(properties.title));
    frame.setObjectName(toQt(properties.title));

    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
        | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    flags.setFlag(Qt::WindowMinimizeButtonHint, properties.minimizeButton);
    flags.setFlag(Qt::WindowMaximizeButtonHint, properties.maximizeButton);
    frame.setWindowFlags(flags);

    MenuBar& bar = properties.menuBar ? *properties.menuBar : Application::instance().menuBar();
    bar.attachTo(*this);
    m_native->scaleToUserAndScreen(QSize(properties.width, properties.height));
    if (properties.resizable) {
        frame.setMinimumSize(smallestSide, smallestSide);
        frame.setMaximumSize(largestSide, largestSide);
    } else {
        frame.setFixedSize(frame.size());
    }
    m_visibleAtStart = properties.visibleAtStart;
}

void Window::place(std::span<const ControlRow> table)
{
    std::vector<RectControl*> byTabIndex;
    for (const ControlRow& row : table) {
        RectControl& placed = control(row.name);
        if (placed.Kind() != row.kind)
            throw std::logic_error("the table gives " + placed.Name() + " another kind");
        placed.native().content = m_native->content;
        placed.place(row);
        byTabIndex.push_back(&placed);
    }
    std::stable_sort(byTabIndex.begin(), byTabIndex.end(),
        [](const RectControl* a, const RectControl* b) { return a->TabIndex() < b->TabIndex(); });
    QWidget* previous = nullptr;
    for (RectControl* each : byTabIndex) {
        QWidget* widget = each->native().widget;
        if (previous && widget)
            QWidget::setTabOrder(previous, widget);
        if (widget)
            previous = widget;
    }
}

void Window::add(RectControl& control)
{
    m_controls.push_back(&control);
}

void Window::runOpening()
{
    Layout();
    if (const auto place = std::exchange(placeOfLastWindow, std::nullopt))
        m_native->frame->move(*place);
    if (m_visibleAtStart)
        showAtStart();
    for (RectControl* each : m_controls)
        each->opened();
    runGuarded("Event_Open of " + Title(), [this] { Event_Open(); });
}

void Window::showAtStart()
{
    if (handlerDepth() == 0) {
        Show();
        return;
    }
    // In a turn of the event loop, so that a window which the handler closes again is never shown.
    QTimer::singleShot(0, m_native->frame.get(), [this] {
        if (!m_closed && !m_native->frame->isVisible())
            Show();
    });
}

WindowList& WindowList::instance()
{
    static WindowList list;
    return list;
}

Window& WindowList::open(std::unique_ptr<Window> window)
{
    Window& opened = *window;
    m_open.push_back({ std::move(window), typeid(void) });
    opened.runOpening();
    return opened;
}

Window& WindowList::implicitInstance(std::type_index type, std::unique_ptr<Window> (*make)())
{
    if (Window* open = findImplicit(type))
        return *open;
    // Added to the list before it opens: its own Event_Open may ask for the implicit instance.
    m_open.push_back({ make(), type });
    Window& made = *m_open.back().window;
    made.runOpening();
    return made;
}

Window* WindowList::findImplicit(std::type_index type) const
{
    for (const Entry& entry : m_open) {
        if (entry.implicitAs == type)
            return entry.window.get();
    }
    return nullptr;
}

std::vector<Window*> WindowList::openWindows() const
{
    std::vector<Window*> windows;
    for (const Entry& entry : m_open)
        windows.push_back(entry.window.get());
    return windows;
}

void WindowList::closed(Window& window)
{
    const auto entry = std::find_if(
        m_open.begin(), m_open.end(), [&window](const Entry& each) { return each.window.get() == &window; });
    if (entry == m_open.end())
        return;
    m_closed.push_back(std::move(entry->window));
    m_open.erase(entry);
    if (m_open.empty())
        placeOfLastWindow = window.native().frame->pos();
    deleteClosedSoon();
    Application::instance().windowClosed();
}

void WindowList::closeAll()
{
    for (Window* window : openWindows())
        window->Close();
}

void WindowList::deleteClosedSoon()
{
    if (m_closed.empty())
        return;
    QTimer::singleShot(0, [this] {
        if (handlerDepth() == 0 && !isOnlyPainting())
            deleteClosed();
    });
}

void WindowList::deleteClosed()
{
    m_closed.clear();
}

} // namespace quilvane
