// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/QtDesktop.h"

#include "framework/internal/qtText.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QUrl>

namespace quilvane {

namespace {

Desktop* desktopInUse = nullptr; // none: the real one

QWidget* parentWindow()
{
    return QApplication::activeWindow();
}

std::optional<std::string> chosen(const QString& path)
{
    if (path.isEmpty())
        return std::nullopt;
    return QFile::encodeName(path).toStdString();
}

void show(QMessageBox::Icon icon, std::string_view text, std::string_view more)
{
    QMessageBox box(icon, QApplication::applicationName(), toQt(text), QMessageBox::Ok, parentWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(toQt(more));
    box.exec();
}

} // namespace

Desktop& Desktop::current()
{
    static QtDesktop real;
    return desktopInUse ? *desktopInUse : real;
}

void Desktop::use(Desktop* desktop)
{
    desktopInUse = desktop;
}

std::optional<std::string> QtDesktop::chooseFileToOpen()
{
    return chosen(QFileDialog::getOpenFileName(parentWindow(), "Search File", QDir::homePath(),
        "Documents (*.csv *.txt *.pdf *.doc *.docx);;All files (*)"));
}

std::optional<std::string> QtDesktop::chooseFileToSave(std::string_view defaultName)
{
    return chosen(QFileDialog::getSaveFileName(
        parentWindow(), "Export", QDir::homePath() + '/' + toQt(defaultName), "All files (*)"));
}

std::optional<std::string> QtDesktop::chooseFolder()
{
    return chosen(QFileDialog::getExistingDirectory(parentWindow(), "Search Folder", QDir::homePath()));
}

void QtDesktop::showMessage(std::string_view text)
{
    show(QMessageBox::Information, text, {});
}

MessageDialog::Button QtDesktop::showDialog(const MessageDialog& dialog)
{
    QMessageBox box(dialog.Icon == 1 ? QMessageBox::Warning : QMessageBox::Information,
        QApplication::applicationName(), toQt(dialog.Message), QMessageBox::NoButton, parentWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(toQt(dialog.Explanation));
    const auto add = [&box](const MessageDialogButton& button, QMessageBox::ButtonRole role) {
        return button.Visible ? box.addButton(toQt(button.Caption), role) : nullptr;
    };
    QPushButton* action = add(dialog.ActionButton, QMessageBox::AcceptRole);
    QPushButton* cancel = add(dialog.CancelButton, QMessageBox::RejectRole);
    const QPushButton* alternate = add(dialog.AlternateActionButton, QMessageBox::ActionRole);
    box.setDefaultButton(action);
    box.setEscapeButton(cancel ? cancel : action);
    box.exec();
    if (box.clickedButton() == alternate && alternate)
        return MessageDialog::Button::AlternateAction;
    return box.clickedButton() == action ? MessageDialog::Button::Action : MessageDialog::Button::Cancel;
}

void QtDesktop::showError(std::string_view what, std::string_view where)
{
    show(QMessageBox::Critical, what, where);
}

bool QtDesktop::waitForPage(
    std::string_view host, const std::function<std::optional<std::uint64_t>()>& bytesSoFar)
{
    constexpr int lookEvery = 100; // ms
    constexpr int longestHost = 40; // average letters
    QProgressDialog dialog(parentWindow());
    auto* const label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setMargin(8);
    dialog.setLabel(label);
    dialog.setRange(0, 0); // a server need not say how much is to come
    const QFontMetrics metrics(label->font());
    const QString shownHost
        = metrics.elidedText(toQt(host), Qt::ElideMiddle, longestHost * metrics.averageCharWidth());
    const auto look = [&] {
        const std::optional<std::uint64_t> bytes = bytesSoFar();
        if (!bytes)
            return dialog.accept();
        const QString size
            = QLocale::c().formattedDataSize(static_cast<qint64>(*bytes), 1, QLocale::DataSizeSIFormat);
        dialog.setLabelText("Loading the page from " + shownHost + "\nReceived so far: " + size);
    };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, look);
    timer.start(lookEvery);
    look();
    dialog.exec();
    return !dialog.wasCanceled();
}

bool QtDesktop::openWithDefaultApplication(std::string_view path)
{
    const QByteArray bytes(path.data(), static_cast<qsizetype>(path.size()));
    return QDesktopServices::openUrl(QUrl::fromEncoded("file://" + bytes.toPercentEncoding("/")));
}

} // namespace quilvane
