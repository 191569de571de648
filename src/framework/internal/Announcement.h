// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

namespace quilvane {

/// Lets screen readers speak a text wherever the focus is. They speak the labels in an object with the role
/// of a notification when it is shown; Qt 6.4 has no event for announcements. The widget has no size, so it
/// is invisible.
class Announcement : public QWidget {
public:
    explicit Announcement(QWidget& window);

    /// Speaks `text` in the next turn of the event loop. Of several texts before that, only the last one is
    /// spoken.
    void say(const QString& text);

private:
    void speak();

    QLabel* m_label;
    QString m_text; // the text that will be spoken
    QTimer m_hiding;
};

} // namespace quilvane
