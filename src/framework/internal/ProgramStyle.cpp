// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/ProgramStyle.h"

#include "framework/internal/contrast.h"

#include <QPainter>
#include <QPalette>
#include <QStyleOption>

namespace quilvane {

namespace {

constexpr double separatorContrast = 2; // a hint for the eye, which nobody needs to read

} // namespace

ProgramStyle::ProgramStyle()
    : QProxyStyle("Fusion")
{
}

void ProgramStyle::polish(QPalette& palette)
{
    QProxyStyle::polish(palette);
    if (!isDark(palette))
        return;
    // About the shade that Fusion gives the top of a button.
    const QColor button = palette.color(QPalette::Disabled, QPalette::Button).lighter(150);
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role,
            readableOn(button, palette.color(QPalette::Disabled, role), outlineContrast));
}

void ProgramStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isBox = element == PE_IndicatorCheckBox;
    if (!isDark(option->palette)
        || !(isBox || element == PE_FrameLineEdit || element == PE_Frame || element == PE_PanelMenu))
        return;
    // Over the outline that Fusion has drawn.
    const QColor window = option->palette.color(QPalette::Window);
    const bool focused = option->state.testFlag(State_HasFocus);
    const QColor outline = focused ? option->palette.color(QPalette::Highlight) : window;
    const double radius = element == PE_FrameLineEdit ? 2 : 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(readableOn(window, outline, outlineContrast));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter->restore();
}

void ProgramStyle::drawControl(
    ControlElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const bool isSeparator
        = element == CE_MenuItem && item && item->menuItemType == QStyleOptionMenuItem::Separator;
    if (!isSeparator || !isDark(option->palette)) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    const QColor window = option->palette.color(QPalette::Window);
    painter->setPen(readableOn(window, window, separatorContrast));
    const int y = option->rect.center().y();
    painter->drawLine(option->rect.left() + 5, y, option->rect.right() - 5, y);
}

int ProgramStyle::styleHint(
    StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* data) const
{
    // In the dark the light shadow would make grey menu items as bold and bright as live ones.
    if (hint == SH_EtchDisabledText)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
}

} // namespace quilvane
