// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/QtDesktop.h"

#include "framework/internal/FilePortal.h"
#include "framework/internal/WindowPainter.h"
#include "framework/internal/qtText.h"
#include "framework/internal/windowScale.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>

namespace quilvane {

namespace {

Desktop* desktopInUse = nullptr; // null: the real one

QWidget* parentWindow()
{
    return QApplication::activeWindow();
}

constexpr const char* allFiles = "All files (*)";

/// The words and the patterns in Qt's form. Some desktops' dialogs distinguish upper and lower case.
QString nameFilter(const OfferedFiles& files)
{
    QStringList patterns;
    for (const std::string_view mark : files.marks) {
        QString pattern = "*";
        for (const QChar character : toQt(mark))
            pattern += character.isLetter() ? '[' + character.toLower() + character.toUpper() + ']'
                                            : QString(character);
        patterns += pattern + '*';
    }
    return toQt(files.words) + " (" + patterns.join(' ') + ')';
}

/// The folder in which a dialog starts whose last choice was in `last`.
QString startFolder(const QString& last)
{
    for (const QString& folder :
        { last, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) }) {
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return folder;
    }
    return QDir::homePath();
}

/// To be called before the dialog gets its other properties: the dialog that is chosen here takes only those
/// set later.
void useDesktopsOwnIfThere(QFileDialog& dialog, int portalVersion)
{
    dialog.setOption(QFileDialog::DontUseNativeDialog, FilePortal::version() < portalVersion);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
}

std::optional<std::string> choice(QFileDialog& dialog)
{
    dialog.resize(dialog.sizeHint().boundedTo(roomOnScreen(*dialog.screen())));
    // A list of suggestions may still be open. While it is, Qt takes no notice of the window that gets the
    // keyboard back.
    QObject::connect(&dialog, &QDialog::finished, [] {
        if (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
    });
    // Not exec(), which waits for the portal's answer even when the dialog has been cancelled.
    if (!dialog.testOption(QFileDialog::DontUseNativeDialog))
        FilePortal::cancelAtItsEnd(dialog);
    QEventLoop loop;
    QObject::connect(&dialog, &QDialog::finished, &loop, &QEventLoop::quit);
    dialog.setModal(true);
    dialog.show();
    loop.exec();
    const bool isAccepted = dialog.result() == QDialog::Accepted;
    WindowPainter::clearAfterDialog();
    if (!isAccepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString();
}

QString folderOf(const std::string& path)
{
    return QFileInfo(QFile::decodeName(path.c_str())).absolutePath();
}

void show(QMessageBox::Icon icon, std::string_view text, std::string_view more)
{
    QMessageBox box(icon, QApplication::applicationName(), toQt(text), QMessageBox::Ok, parentWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(toQt(more));
    box.exec();
    WindowPainter::clearAfterDialog();
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

std::optional<std::string> QtDesktop::chooseFileToOpen(std::string_view title, const OfferedFiles& files)
{
    QFileDialog dialog(parentWindow(), toQt(title));
    useDesktopsOwnIfThere(dialog, 1);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({ nameFilter(files), allFiles });
    dialog.setDirectory(startFolder(m_folderOpenedFrom));
    std::optional<std::string> path = choice(dialog);
    if (path)
        m_folderOpenedFrom = folderOf(*path);
    return path;
}

std::optional<std::string> QtDesktop::chooseFileToSave(std::string_view title, std::string_view defaultName)
{
    QFileDialog dialog(parentWindow(), toQt(title));
    useDesktopsOwnIfThere(dialog, 1);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(allFiles);
    dialog.setDirectory(startFolder(m_folderSavedTo));
    dialog.selectFile(toQt(defaultName));
    // Not for the desktop's own dialog: it asks whether to replace a file before the suffix would be added,
    // so it would ask about another name.
    if (dialog.testOption(QFileDialog::DontUseNativeDialog))
        dialog.setDefaultSuffix(QFileInfo(toQt(defaultName)).suffix());
    std::optional<std::string> path = choice(dialog);
    if (path)
        m_folderSavedTo = folderOf(*path);
    return path;
}

std::optional<std::string> QtDesktop::chooseFolder(std::string_view title)
{
    QFileDialog dialog(parentWindow(), toQt(title));
    useDesktopsOwnIfThere(dialog, 3);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setDirectory(startFolder(m_folderChosen));
    std::optional<std::string> path = choice(dialog);
    if (path)
        m_folderChosen = QFile::decodeName(path->c_str());
    return path;
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
    WindowPainter::clearAfterDialog();
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
    dialog.setWindowTitle(QApplication::applicationName()); // a screen reader speaks it
    auto* const label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setMargin(8);
    dialog.setLabel(label);
    dialog.setRange(0, 0); // without a percentage: a server need not tell the size
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
    timer.stop();
    const bool goesOn = !dialog.wasCanceled();
    WindowPainter::clearAfterDialog();
    return goesOn;
}

bool QtDesktop::openWithDefaultApplication(std::string_view path)
{
    const QByteArray bytes(path.data(), static_cast<qsizetype>(path.size()));
    return QDesktopServices::openUrl(QUrl::fromEncoded("file://" + bytes.toPercentEncoding("/")));
}

} // namespace quilvane
