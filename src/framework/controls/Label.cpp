// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Label.h"

#include "framework/internal/Native.h"
#include "framework/internal/fitText.h"
#include "framework/internal/qtText.h"

#include <QEvent>
#include <QLabel>

#include <algorithm>
#include <cmath>
#include <optional>

namespace quilvane {

namespace {

// Relative luminance and contrast ratio as WCAG 2.1 defines them.
double luminance(const QColor& color)
{
    const auto linear = [](float component) {
        const auto channel = double(component);
        return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const auto [darker, lighter] = std::minmax({ luminance(a), luminance(b) });
    return (lighter + 0.05) / (darker + 0.05);
}

/// The shade of `color` nearest to it that can be read on `background`.
QColor readableOn(const QColor& background, QColor color)
{
    constexpr double leastContrast = 4.5; // WCAG 2.1, level AA
    constexpr int step = 4;
    const int direction = luminance(background) < 0.18 ? step : -step;
    while (contrast(background, color) < leastContrast) {
        const int lightness = std::clamp(color.lightness() + direction, 0, 255);
        if (lightness == color.lightness())
            break;
        color.setHsl(color.hslHue(), color.hslSaturation(), lightness);
    }
    return color;
}

class LabelWidget : public QLabel {
public:
    using QLabel::QLabel;

    void setDesignColor(const QColor& color)
    {
        m_designColor = color;
        applyColor();
    }

protected:
    void changeEvent(QEvent* event) override
    {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            applyColor();
    }

private:
    void applyColor()
    {
        if (!m_designColor)
            return;
        const QColor color = readableOn(palette().color(QPalette::Window), *m_designColor);
        // Setting the palette comes back here as a palette change; it ends with the colour already set.
        if (palette().color(QPalette::WindowText) == color)
            return;
        QPalette changed;
        changed.setColor(QPalette::WindowText, color);
        setPalette(changed);
    }

    std::optional<QColor> m_designColor;
};

QString withVisibleLineEnds(std::string_view text)
{
    QString shown = toQt(text);
    for (QChar& character : shown) {
        if (character == u'\n' || character == u'\r')
            character = QChar(0x21B5);
    }
    return shown;
}

LabelWidget* widgetOf(RectControl& label)
{
    return static_cast<LabelWidget*>(label.native().widget);
}

} // namespace

Label::Label(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::Label)
{
}

void Label::setText(std::string_view text)
{
    m_text = text;
    if (auto* label = widgetOf(*this))
        label->setText(label->wordWrap() ? toQt(text) : withVisibleLineEnds(text));
}

void Label::setTextColor(std::uint32_t rgb)
{
    if (auto* label = widgetOf(*this))
        label->setDesignColor(QColor::fromRgb(rgb));
}

void Label::setTextSize(int pixels)
{
    if (auto* label = widgetOf(*this)) {
        QFont font = label->font();
        font.setPixelSize(pixels);
        label->setFont(font);
    }
}

void Label::setCentred()
{
    if (auto* label = widgetOf(*this))
        label->setAlignment(Qt::AlignCenter);
}

void Label::setMultiline()
{
    if (auto* label = widgetOf(*this)) {
        label->setWordWrap(true);
        label->setFont(label->parentWidget()->font()); // lines are broken instead of set smaller
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        label->setText(toQt(m_text));
    }
}

void Label::makeWidget(Native& native)
{
    auto* label = new LabelWidget(native.content);
    label->setTextFormat(Qt::PlainText);
    // A label that lies over a picture lets drops and clicks through to it.
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    native.widget = label;
}

void Label::setTableCaption(std::string_view caption)
{
    setText(caption);
    if (auto* label = widgetOf(*this))
        fitText(*label, label->text(), 0);
}

} // namespace quilvane
