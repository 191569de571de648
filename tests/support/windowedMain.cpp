// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The main of the tests that need windows: on no screen, and with every warning of Qt a failure.

#include "framework/Runtime.h"

#include <gtest/gtest.h>

#include <QString>

#include <cstdlib>

namespace {

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    // Of the machine, not of the program: without a screen no window comes to the front or holds the
    // keyboard, without a session there is no folder for its run.
    if (message.startsWith("This plugin does not support ") || message.startsWith("QStandardPaths: "))
        return;
    if (type != QtDebugMsg && type != QtInfoMsg)
        ADD_FAILURE() << "Qt says: " << message.toStdString();
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // The desktop at hand is to choose neither colours nor dialogs.
    setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    setenv("QT_QPA_PLATFORMTHEME", "none", 1);
    qInstallMessageHandler(failOnWarning);
    const quilvane::Runtime runtime(argc, argv, "Quilvane");
    return RUN_ALL_TESTS();
}
