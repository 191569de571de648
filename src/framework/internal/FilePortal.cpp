// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/FilePortal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QDialog>
#include <QFile>
#include <QLibraryInfo>

namespace quilvane {

namespace {

constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";
constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* portalTheme = "xdgdesktopportal";
constexpr int patience = 1000; // ms

bool setHere = false;
bool themeInUse = false;

} // namespace

FilePortal::FilePortal()
{
    const QString plugin
        = QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platformthemes/libqxdgdesktopportal.so";
    if (!qEnvironmentVariableIsSet(themeVariable) && QFile::exists(plugin))
        setHere = qputenv(themeVariable, portalTheme);
    themeInUse = qgetenv(themeVariable) == portalTheme;
}

void FilePortal::applicationIsMade()
{
    if (setHere)
        qunsetenv(themeVariable);
}

int FilePortal::version()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!themeInUse || !bus.isConnected())
        return 0;
    QDBusMessage question = QDBusMessage::createMethodCall(
        service, "/org/freedesktop/portal/desktop", "org.freedesktop.DBus.Properties", "Get");
    question << QString("org.freedesktop.portal.FileChooser") << QString("version");
    const QDBusReply<QDBusVariant> answer = bus.call(question, QDBus::Block, patience);
    return answer.isValid() ? answer.value().variant().toInt() : 0;
}

void FilePortal::cancelAtItsEnd(QDialog& dialog)
{
    auto* watcher = new QDBusServiceWatcher(
        service, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForUnregistration, &dialog);
    QObject::connect(watcher, &QDBusServiceWatcher::serviceUnregistered, &dialog, &QDialog::reject);
}

} // namespace quilvane
