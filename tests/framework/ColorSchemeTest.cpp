// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/ColorScheme.h"
#include "framework/internal/contrast.h"
#include "support/Scoped.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QLineEdit>
#include <QPalette>
#include <QProcess>
#include <QPushButton>
#include <QStyle>
#include <QTest>

#include <algorithm>
#include <map>
#include <string>

namespace quilvane {

namespace {

/// A message bus for the test alone.
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

/// The part of a desktop's settings portal for dark windows.
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

Scoped palette(const QPalette& colors)
{
    return Scoped([](const QPalette& now) { QApplication::setPalette(now); }, QPalette(), colors);
}

bool isDarkNow()
{
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

TEST(ColorSchemeTest, followsTheDesktop)
{
    Bus bus;
    Portal portal(bus.portalsEnd(), 1);
    const ColorScheme scheme(bus.programsEnd());
    EXPECT_TRUE(QTest::qWaitFor(isDarkNow)) << "as the desktop answers";
    portal.change("color-scheme", 2);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDarkNow(); })) << "as the desktop tells later";
    portal.change("contrast", 1);
    portal.change("color-scheme", 1);
    EXPECT_TRUE(QTest::qWaitFor(isDarkNow));
    portal.change("color-scheme", 0);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDarkNow(); }))
        << "no preference gives the desktop's own colours";
}

TEST(ColorSchemeTest, emptyAndDisabledControlsAreVisibleInDarkColors)
{
    const auto desktops = [](QPalette palette) {
        QApplication::style()->polish(palette); // as Qt does
        return palette;
    };
    ColorScheme::useDarkColors();
    const std::pair<const char*, QPalette> colors[] = {
        { "the program's own", QApplication::palette() },
        { "black", desktops(QPalette(Qt::black)) },
        { "dark grey", desktops(QPalette(QColor(49, 54, 59), QColor(42, 46, 50))) },
    };
    QCheckBox box;
    QLineEdit field;
    QPushButton button("Caption");
    QCheckBox greyBox("Caption");
    QWidget* const widgets[] = { &box, &field, &button, &greyBox };
    button.setEnabled(false);
    greyBox.setEnabled(false);
    for (const auto& [name, colorsOfAll] : colors) {
        const Scoped shown = palette(colorsOfAll);
        QApplication::processEvents();
        for (QWidget* widget : widgets) {
            SCOPED_TRACE(std::string(name) + ", " + widget->metaObject()->className());
            widget->resize(120, 20);
            const QImage image = widget->grab().toImage();
            std::map<QRgb, int> count;
            for (int x = 0; x < image.width(); ++x) {
                for (int y = 0; y < image.height(); ++y)
                    ++count[image.pixel(x, y)];
            }
            const auto behind = std::max_element(
                count.begin(), count.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
            EXPECT_TRUE(std::any_of(count.begin(), count.end(),
                [&](const auto& each) { return contrast(QColor(each.first), QColor(behind->first)) >= 3; }));
        }
    }
}

TEST(ColorSchemeTest, leavesTheDesktopsOwnDarkColorsAlone)
{
    const QPalette own(Qt::black);
    const Scoped shown = palette(own);
    Bus bus;
    Portal portal(bus.portalsEnd(), 1);
    const ColorScheme scheme(bus.programsEnd());
    EXPECT_TRUE(QTest::qWaitFor([&portal] { return portal.wasAsked; }));
    portal.change("color-scheme", 0);
    // After this answer, all that the portal has sent before has arrived.
    bus.programsEnd().call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"));
    QApplication::processEvents();
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), own.color(QPalette::Window));
}

} // namespace quilvane
