// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/Announcement.h"

#include <QAccessibleWidget>
#include <QLabel>

#include <chrono>

namespace quilvane {

namespace {

/// Long enough for a busy screen reader to ask for the text.
constexpr auto showsFor = std::chrono::seconds(20);

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* announcement = dynamic_cast<Announcement*>(object);
    return announcement ? new QAccessibleWidget(announcement, QAccessible::Notification) : nullptr;
}

} // namespace

Announcement::Announcement(QWidget& window)
    : QWidget(&window)
    , m_label(new QLabel(this))
{
    QAccessible::installFactory(makeAccessible); // once, however often it is called
    setGeometry(0, 0, 0, 0);
    m_label->setGeometry(0, 0, 0, 0);
    m_label->setTextFormat(Qt::PlainText);
    hide();
    m_hiding.setSingleShot(true);
    m_hiding.setInterval(showsFor);
    connect(&m_hiding, &QTimer::timeout, this, &QWidget::hide);
}

void Announcement::say(const QString& text)
{
    if (m_text.isEmpty() && !text.isEmpty())
        QTimer::singleShot(0, this, [this] { speak(); });
    m_text = text;
}

void Announcement::speak()
{
    hide();
    m_label->setText(m_text);
    m_text.clear();
    if (QAccessible::isActive()) {
        show();
        m_hiding.start();
    }
}

} // namespace quilvane
