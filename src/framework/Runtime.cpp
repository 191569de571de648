// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Runtime.h"

#include "framework/EventGuard.h"
#include "framework/internal/ColorScheme.h"
#include "framework/internal/qtText.h"
#include "framework/threads/Thread.h"

#include <QApplication>
#include <QFont>
#include <QStyleFactory>

#include <csignal>

namespace quilvane {

namespace {

constexpr int textSize = 13; // logical pixels

void reportFromThread(Thread& thread, std::exception_ptr exception)
{
    try {
        std::rethrow_exception(exception);
    } catch (const std::exception&) {
        reportCurrentException(thread.Name() + "_Run");
    }
}

} // namespace

struct Runtime::Native {
    Native(int& argc, char** argv)
        : application(argc, argv)
    {
    }

    QApplication application;
    ColorScheme colorScheme{ QDBusConnection::sessionBus() };
};

Runtime::Runtime(int& argc, char** argv, std::string_view applicationName)
    : m_native(std::make_unique<Native>(argc, argv))
{
    // Not the display name: Qt would append that to the title of every window.
    QApplication::setApplicationName(toQt(applicationName));
    QApplication::setDesktopFileName(toQt(applicationName).toLower());
    // Closing the last window does not end the program; its File menu does.
    QApplication::setQuitOnLastWindowClosed(false);
    // The windows' tables give places in pixels, so every desktop gets the style whose controls fit them.
    // Colours are the desktop's own.
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QFont font = QApplication::font();
    font.setPixelSize(textSize);
    QApplication::setFont(font);
    setUncaughtThreadHandler(reportFromThread);
    // A write past the user's limit on file sizes shall fail with a reason and not end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    // So shall one to a connection or a process that has closed.
    std::signal(SIGPIPE, SIG_IGN);
}

Runtime::~Runtime() = default;

void Runtime::useDarkColors()
{
    ColorScheme::useDarkColors();
}

} // namespace quilvane
