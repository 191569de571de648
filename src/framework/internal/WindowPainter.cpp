// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/WindowPainter.h"

#include "framework/Application.h"
#include "framework/EventGuard.h"
#include "framework/documents/internal/ReaderProcess.h"
#include "framework/keepWindowPainted.h"

#include <QAbstractEventDispatcher>
#include <QCursor>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QThread>

#include <exception>

namespace quilvane {

namespace {

constexpr int longestPainting = 20; // ms; the handler waits for it
constexpr int waitCursorAfter = 300; // ms without a turn of the event loop
constexpr int dialogGoesWithin = 60; // ms, enough for the window manager to remove its frame, too

bool waitCursorShows = false;

/// Delivers the events that only the toolkit handles: painting, and questions of the window manager and of
/// the accessibility bus. False if there was none.
bool deliverToToolkit()
{
    return QAbstractEventDispatcher::instance()->processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace

WindowPainter::WindowPainter()
{
    const auto* dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &WindowPainter::loopTurned);
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &WindowPainter::loopTurned);
    internal::eventLoopTurned();
    internal::setWindowPainter(&WindowPainter::paint);
}

WindowPainter::~WindowPainter()
{
    internal::setWindowPainter(nullptr);
}

void WindowPainter::paint()
{
    // Destructors that run during an exception may call this: then it must not throw, and need not paint.
    if (isOnlyPainting() || std::uncaught_exceptions() > 0)
        return;
    {
        const OnlyPainting painting;
        if (!waitCursorShows && internal::timeSinceTurn() >= waitCursorAfter) {
            QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
            waitCursorShows = true;
        }
        QElapsedTimer spent;
        spent.start();
        while (deliverToToolkit() && spent.elapsed() < longestPainting) { }
    }
    internal::windowsWerePainted();
    Application::endHandlerIfQuitting();
}

void WindowPainter::clearAfterDialog()
{
    const OnlyPainting painting;
    QElapsedTimer spent;
    spent.start();
    while (spent.elapsed() < dialogGoesWithin) {
        if (!deliverToToolkit())
            QThread::msleep(1);
    }
}

void WindowPainter::loopTurned()
{
    if (isOnlyPainting())
        return;
    internal::eventLoopTurned();
    if (waitCursorShows) {
        QGuiApplication::restoreOverrideCursor();
        waitCursorShows = false;
    }
    ReaderProcess::reap();
}

} // namespace quilvane
