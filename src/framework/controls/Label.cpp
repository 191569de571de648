// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Label.h"

#include "framework/internal/Native.h"
#include "framework/internal/WindowNative.h"
#include "framework/internal/contrast.h"
#include "framework/internal/fitText.h"
#include "framework/internal/qtText.h"
#include "framework/internal/tooltip.h"

#include <QEvent>
#include <QLabel>

#include <optional>

namespace quilvane {

namespace {

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
        const QColor color = readableOn(palette().color(QPalette::Window), *m_designColor, textContrast);
        // Setting the palette causes another palette change, which ends here, since the colour is set
        // already.
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
    if (text == m_text)
        return;
    m_text = text;
    fit();
}

void Label::setTextColor(std::uint32_t rgb)
{
    if (auto* label = widgetOf(*this))
        label->setDesignColor(QColor::fromRgb(rgb));
}

void Label::setTextSize(int pixels)
{
    m_textSize = pixels;
    fit();
}

void Label::setRoom(int width, int above)
{
    m_roomWidth = width;
    m_roomAbove = above;
    fit();
}

void Label::setCentred()
{
    if (auto* label = widgetOf(*this))
        label->setAlignment(Qt::AlignCenter);
}

void Label::setMultiline()
{
    m_multiline = true;
    if (auto* label = widgetOf(*this))
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    fit();
}

void Label::makeWidget(Native& native)
{
    auto* label = new LabelWidget(native.content);
    label->setTextFormat(Qt::PlainText);
    native.widget = label;
}

void Label::setTableCaption(std::string_view caption)
{
    setText(caption);
}

void Label::fit()
{
    auto* label = widgetOf(*this);
    if (!label)
        return;
    const Window::Native& frame = window().native();
    const int width = m_roomWidth > 0 ? m_roomWidth : Width();
    const QRect line = frame.scaled(QRect(Left(), Top(), width, Height()));
    const QRect lines = frame.scaled(QRect(Left(), Top() - m_roomAbove, width, Height() + m_roomAbove));
    const QString text = m_multiline ? toQt(m_text) : withVisibleLineEnds(m_text);
    QFont font = label->parentWidget()->font();
    if (m_textSize > 0)
        font.setPixelSize(frame.scaled(m_textSize));

    bool broken = m_multiline;
    const auto fits = [&] {
        const QFontMetrics metrics(font);
        broken = m_multiline || (m_roomAbove > 0 && metrics.horizontalAdvance(text) > line.width());
        if (!broken)
            return metrics.horizontalAdvance(text) <= line.width();
        const QRect needed = metrics.boundingRect(QRect(QPoint(), lines.size()), Qt::TextWordWrap, text);
        return needed.width() <= lines.width() && needed.height() <= lines.height();
    };
    while (!fits() && font.pixelSize() > smallestTextSize)
        font.setPixelSize(font.pixelSize() - 1);
    m_isCut = !fits();
    if (m_isCut)
        broken = m_multiline;

    label->setGeometry(broken ? lines : line);
    label->setFont(font);
    label->setWordWrap(broken);
    label->setText(
        m_isCut && !broken ? QFontMetrics(font).elidedText(text, Qt::ElideMiddle, line.width()) : text);
    if (const QString name = m_isCut ? text : QString(); name != label->accessibleName())
        label->setAccessibleName(name);
    showHelpText();
}

void Label::showHelpText()
{
    RectControl::showHelpText();
    QWidget& label = *native().widget;
    if (m_isCut)
        label.setToolTip(tooltip(m_text + (helpText().empty() ? "" : "\n\n" + helpText())));
    // A label may lie over a picture and then lets drops and clicks through to it. One with a tooltip can't,
    // since it would not show.
    label.setAttribute(Qt::WA_TransparentForMouseEvents, label.toolTip().isEmpty());
}

} // namespace quilvane
