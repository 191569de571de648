// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace quilvane {

/// Qt's Fusion style, whose controls fit the windows' tables. In dark colours Fusion draws outlines darker
/// than the window, and disabled captions in the desktop's grey. This style gives both enough contrast.
class ProgramStyle : public QProxyStyle {
public:
    ProgramStyle();

    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
        QStyleHintReturn* data) const override;
};

} // namespace quilvane
