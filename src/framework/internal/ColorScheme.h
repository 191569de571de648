// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

namespace quilvane {

/// Follows the desktop's wish for dark windows, at the start and while the program runs. Most desktops tell
/// it by the settings portal alone, which this version of Qt does not ask. Colours of the desktop's own that
/// are dark already stay as they are.
class ColorScheme : public QObject {
    Q_OBJECT

public:
    /// Asks the desktop on that bus and does not wait for the answer. Without a bus nothing follows.
    explicit ColorScheme(QDBusConnection bus);

    /// Light text on dark windows.
    static void useDarkColors();

private:
    Q_SLOT void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);
    void apply(const QVariant& scheme);

    bool m_isOurDark = false;
};

} // namespace quilvane
