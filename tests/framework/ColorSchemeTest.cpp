// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/ColorScheme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QPalette>
#include <QProcess>
#include <QTest>

namespace quilvane {

namespace {

/// A message bus of the test's own.
class Bus {
public:
    Bus()
    {
        m_daemon.setStandardErrorFile(QProcess::nullDevice());
        m_daemon.start("dbus-daemon", { "--session", "--nofork", "--print-address" });
        m_daemon.waitForReadyRead();
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    }
    ~Bus()
    {
        QDBusConnection::disconnectFromBus("portal");
        QDBusConnection::disconnectFromBus("program");
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    QDBusConnection portalsEnd() { return QDBusConnection::connectToBus(m_address, "portal"); }
    QDBusConnection programsEnd() { return QDBusConnection::connectToBus(m_address, "program"); }

private:
    QProcess m_daemon;
    QString m_address;
};

/// The part of a desktop's settings portal that tells of dark windows.
class Portal : public QDBusVirtualObject {
public:
    Portal(QDBusConnection bus, uint scheme)
        : m_bus(std::move(bus))
        , m_scheme(scheme)
    {
        m_bus.registerVirtualObject(path, this);
        m_bus.registerService("org.freedesktop.portal.Desktop");
    }

    bool wasAsked = false;

    void change(const QString& key, uint scheme)
    {
        QDBusMessage signal
            = QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
        signal << "org.freedesktop.appearance" << key << QVariant::fromValue(QDBusVariant(scheme));
        m_bus.send(signal);
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() != "Read"
            || message.arguments() != QVariantList{ "org.freedesktop.appearance", "color-scheme" })
            return false;
        wasAsked = true;
        const QDBusVariant inner{ m_scheme };
        return connection.send(
            message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(inner)))));
    }
    QString introspect(const QString&) const override { return {}; }

private:
    const QString path = "/org/freedesktop/portal/desktop";
    QDBusConnection m_bus;
    uint m_scheme;
};

bool isDark()
{
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

TEST(ColorSchemeTest, followsTheDesktop)
{
    Bus bus;
    Portal portal(bus.portalsEnd(), 1);
    const ColorScheme scheme(bus.programsEnd());
    EXPECT_TRUE(QTest::qWaitFor(isDark)) << "as the desktop answers";
    portal.change("color-scheme", 2);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDark(); })) << "as the desktop tells later";
    portal.change("contrast", 1);
    portal.change("color-scheme", 1);
    EXPECT_TRUE(QTest::qWaitFor(isDark));
    portal.change("color-scheme", 0);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDark(); })) << "no preference gives the desktop's own colours";
}

TEST(ColorSchemeTest, leavesTheDesktopsOwnDarkColorsAlone)
{
    const QPalette own(Qt::black);
    QApplication::setPalette(own);
    Bus bus;
    Portal portal(bus.portalsEnd(), 1);
    const ColorScheme scheme(bus.programsEnd());
    EXPECT_TRUE(QTest::qWaitFor([&portal] { return portal.wasAsked; }));
    portal.change("color-scheme", 0);
    // What the portal has sent by now comes in ahead of this answer.
    bus.programsEnd().call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"));
    QApplication::processEvents();
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), own.color(QPalette::Window));
    QApplication::setPalette(QPalette());
}

} // namespace quilvane
