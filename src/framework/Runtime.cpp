// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Runtime.h"

#include "framework/internal/ColorScheme.h"
#include "framework/internal/FilePortal.h"
#include "framework/internal/ProgramStyle.h"
#include "framework/internal/WindowPainter.h"
#include "framework/internal/editCommands.h"
#include "framework/internal/qtText.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSettings>
#include <QSvgRenderer>

#include <csignal>

namespace quilvane {

namespace {

/// In the sizes that title bars and panels show. Needed where the desktop does not know the program's entry,
/// as when it is not installed: then it shows the windows' own icon.
QIcon iconFromDrawings(const QString& id)
{
    QSvgRenderer small(QStringLiteral(":/icons/%1-small.svg").arg(id));
    QSvgRenderer large(QStringLiteral(":/icons/%1.svg").arg(id));
    QIcon icon;
    for (const int side : { 16, 24, 32, 64 }) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        (side < 32 ? small : large).render(&painter);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace

struct Runtime::Native {
    Native(int& argc, char** argv)
        : application(argc, argv)
    {
    }

    FilePortal filePortal;
    QApplication application;
    ColorScheme colorScheme{ QDBusConnection::sessionBus() };
    WindowPainter painter;
};

Runtime::Runtime(int& argc, char** argv, std::string_view applicationName)
    : m_native(std::make_unique<Native>(argc, argv))
{
    FilePortal::applicationIsMade();
    // The toolkit's file dialog would leave a file of its own, QtProject.conf, in the user's configuration.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/dev/null");
    // Not the display name: Qt would append that to the title of every window.
    QApplication::setApplicationName(toQt(applicationName));
    // Closing the last window does not end the program; its File menu does.
    QApplication::setQuitOnLastWindowClosed(false);
    // The same style on every desktop, in the desktop's colours.
    QApplication::setStyle(new ProgramStyle);
    followFocus();
    // A write beyond the user's limit on file sizes must fail with a reason and not end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    // So must a write to a connection or a process that has closed.
    std::signal(SIGPIPE, SIG_IGN);
}

Runtime::~Runtime() = default;

void Runtime::setDesktopEntry(std::string_view id)
{
    QApplication::setDesktopFileName(toQt(id));
    QApplication::setWindowIcon(iconFromDrawings(toQt(id)));
}

void Runtime::useDarkColors()
{
    ColorScheme::useDarkColors();
}

} // namespace quilvane
