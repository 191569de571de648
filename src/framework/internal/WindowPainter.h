// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace quilvane {

/// Paints the windows while a handler works: what keepWindowPainted calls once it is time. One, made by the
/// Runtime after Qt's application object.
class WindowPainter : public QObject {
public:
    WindowPainter();
    ~WindowPainter() override;

    /// Lets go what a dialog that was just answered has covered, so that it is off the screen before its
    /// handler goes on.
    static void clearAfterDialog();

private:
    static void paint();
    static void loopTurned();
};

} // namespace quilvane
