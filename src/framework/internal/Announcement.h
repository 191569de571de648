// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

namespace quilvane {

/// Has screen readers speak a text wherever the keyboard is. They speak the labels in an object with the role
/// of a notification when it begins to show; an event for announcements has come to Qt later. Nobody sees it:
/// it has no size.
class Announcement : public QWidget {
public:
    explicit Announcement(QWidget& window);

    /// At the next turn of the event loop. Of the texts that come before it the last one is spoken.
    void say(const QString& text);

private:
    void speak();

    QLabel* m_label;
    QString m_text; // what is still to be spoken
    QTimer m_hiding;
};

} // namespace quilvane
