// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The main function of the tests that need windows: they run without a screen, and every warning of Qt is a
// failure.

#include "framework/Runtime.h"

#include <gtest/gtest.h>

#include <QString>

#include <cstdlib>

namespace {

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    // These come from the machine and not from the program: without a screen no window can be raised or get
    // the focus, and without a session there is no runtime folder.
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
    // The machine's desktop must not choose colours or dialogs.
    setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    setenv("QT_QPA_PLATFORMTHEME", "none", 1);
    qInstallMessageHandler(failOnWarning);
    const quilvane::Runtime runtime(argc, argv, "Quilvane");
    return RUN_ALL_TESTS();
}
