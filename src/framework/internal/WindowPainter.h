// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace quilvane {

/// Paints the windows while a handler works: keepWindowPainted() calls it when it is time. The Runtime makes
/// the only one, after Qt's application object.
class WindowPainter : public QObject {
public:
    WindowPainter();
    ~WindowPainter() override;

    /// Paints what a dialog has covered, so that the closed dialog is off the screen before the handler goes
    /// on.
    static void clearAfterDialog();

private:
    static void paint();
    static void loopTurned();
};

} // namespace quilvane
