// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The barest window that the toolkit can show, or with an argument the barest that shows a text: what the
// program's start is compared with.
#include <QApplication>
#include <QLabel>
#include <QWidget>

#include <memory>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const std::unique_ptr<QWidget> window(argc > 1 ? new QLabel(argv[1]) : new QWidget);
    window->show();
    return QApplication::exec();
}
