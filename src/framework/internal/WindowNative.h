// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/Window.h"

#include <QMainWindow>

namespace quilvane {

class Announcement;

struct Window::Native {
    std::unique_ptr<QMainWindow> frame;
    QWidget* content = nullptr; // the frame's central widget, or the widget in its scroll area
    Announcement* announcement = nullptr; // owned by the frame; null before the first announcement
    double unit = 1; // logical pixels for one of the control table

    int menuBarHeight() const;
    /// Sets the unit, and with it the size of the text and of the frame. To be called once, after the menu
    /// bar was added.
    void scaleToUserAndScreen(const QSize& contentSize);

    int scaled(int length) const { return qRound(length * unit); }
    /// Scales the corners, so that controls which touch in the table touch in the window.
    QRect scaled(const QRect& place) const
    {
        const QPoint corner(scaled(place.left()), scaled(place.top()));
        const QPoint end(scaled(place.left() + place.width()), scaled(place.top() + place.height()));
        return { corner, QSize(end.x() - corner.x(), end.y() - corner.y()) };
    }
};

} // namespace quilvane
