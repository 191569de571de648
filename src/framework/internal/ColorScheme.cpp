// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/ColorScheme.h"

#include "framework/internal/contrast.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPalette>
#include <QStyle>

namespace quilvane {

namespace {

// The interface org.freedesktop.portal.Settings of the desktop portals.
constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* path = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";
constexpr const char* appearance = "org.freedesktop.appearance";
constexpr const char* colorScheme = "color-scheme";
constexpr uint preferDark = 1; // 0 is no preference, 2 is light

} // namespace

ColorScheme::ColorScheme(QDBusConnection bus)
{
    if (!bus.isConnected())
        return;
    // Otherwise the slot is not found: it is looked up by the types of its parameters, and this type would be
    // registered too late.
    qRegisterMetaType<QDBusVariant>();
    bus.connect(service, path, interface, "SettingChanged", this,
        SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, "Read");
    question << QString(appearance) << QString(colorScheme);
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid())
            apply(reply.value().variant());
        answer->deleteLater();
    });
}

void ColorScheme::useDarkColors()
{
    // From these two Qt derives the shades of frames and shadows.
    QPalette palette(QColor(0x454545), QColor(0x363636));
    palette.setColor(QPalette::Base, QColor(0x1a1a1a));
    palette.setColor(QPalette::AlternateBase, QColor(0x222222));
    palette.setColor(QPalette::Highlight, QColor(0x8a4b10));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QApplication::style()->polish(palette);
    QApplication::setPalette(palette);
}

void ColorScheme::settingChanged(const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group == appearance && key == colorScheme)
        apply(value.variant());
}

void ColorScheme::apply(const QVariant& scheme)
{
    // The answer of Read has one more variant around it than the signal's value.
    const QVariant inner
        = scheme.canConvert<QDBusVariant>() ? scheme.value<QDBusVariant>().variant() : scheme;
    const bool wantsDark = inner.toUInt() == preferDark;
    if (wantsDark && !isDark(QApplication::palette())) {
        useDarkColors();
        m_isOurDark = true;
    } else if (!wantsDark && m_isOurDark) {
        QApplication::setPalette(QPalette());
        m_isOurDark = false;
    }
}

} // namespace quilvane
