// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/ColorScheme.h"
#include "framework/internal/contrast.h"
#include "support/Scoped.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDBusMessage>
#include <QDBusVariant>
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

/// The part of a desktop's settings portal for dark windows.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    void change(const QString& key, uint scheme)
    {
        emit SettingChanged("org.freedesktop.appearance", key, QDBusVariant(scheme));
    }

public slots:
    QDBusVariant Read(const QString& group, const QString& key)
    {
        const bool isKnown = group == "org.freedesktop.appearance" && key == "color-scheme";
        return QDBusVariant(QVariant::fromValue(QDBusVariant(isKnown ? 1U : 0U)));
    }

signals:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

namespace {

/// A message bus for the test alone.
class Bus {
public:
    Bus()
    {
        m_daemon.setStandardErrorFile(QProcess::nullDevice());
        m_daemon.start("dbus-daemon", { "--session", "--nofork", "--print-address" });
        m_daemon.waitForReadyRead();
        const QString address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        for (const char* end : { "desktop", "program" })
            QDBusConnection::connectToBus(address, end);
    }
    ~Bus()
    {
        for (const char* end : { "desktop", "program" })
            QDBusConnection::disconnectFromBus(end);
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    QProcess m_daemon;
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

TEST(ColorSchemeTest, followsTheDesktopUnlessItsOwnColorsAreDark)
{
    const Bus bus;
    Portal portal;
    QDBusConnection desktop("desktop");
    desktop.registerObject("/org/freedesktop/portal/desktop", &portal,
        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    desktop.registerService("org.freedesktop.portal.Desktop");
    const QDBusConnection program("program");
    const ColorScheme scheme(program);
    const auto letAllArrive = [&program] {
        // After this answer, all that the portal has sent before has arrived.
        program.call(QDBusMessage::createMethodCall(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"));
        QApplication::processEvents();
    };
    EXPECT_TRUE(QTest::qWaitFor(isDarkNow)) << "as the desktop answers";
    portal.change("color-scheme", 2);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDarkNow(); })) << "as the desktop tells later";
    portal.change("contrast", 1);
    letAllArrive();
    EXPECT_FALSE(isDarkNow()) << "another setting";
    portal.change("color-scheme", 1);
    EXPECT_TRUE(QTest::qWaitFor(isDarkNow));
    portal.change("color-scheme", 0);
    EXPECT_TRUE(QTest::qWaitFor([] { return !isDarkNow(); }))
        << "no preference gives the desktop's own colours";

    const QPalette ownDark(Qt::black);
    const Scoped shown = palette(ownDark);
    portal.change("color-scheme", 1);
    portal.change("color-scheme", 0);
    letAllArrive();
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), ownDark.color(QPalette::Window));
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
            const auto background = std::max_element(
                count.begin(), count.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
            EXPECT_TRUE(std::any_of(count.begin(), count.end(), [&](const auto& each) {
                return contrast(QColor(each.first), QColor(background->first)) >= 3;
            }));
        }
    }
}

} // namespace quilvane

#include "ColorSchemeTest.moc"
