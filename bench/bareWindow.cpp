// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// An empty window of the toolkit, or, with an argument, a window that shows only that text. The program's
// start is compared with it.
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
