// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

namespace quilvane {

/// Follows the desktop's setting for dark windows, at the start and while the program runs. Most desktops
/// offer it only by the settings portal, which Qt 6.4 does not ask. If the desktop's own colours are dark
/// already, they stay.
class ColorScheme : public QObject {
    Q_OBJECT

public:
    /// Asks the desktop on that bus and does not wait for the answer. Without a bus it does nothing.
    explicit ColorScheme(QDBusConnection bus);

    /// Light text on dark windows.
    static void useDarkColors();

private:
    Q_SLOT void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);
    void apply(const QVariant& scheme);

    bool m_isOurDark = false;
};

} // namespace quilvane
