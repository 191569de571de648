// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later

// Another program to drag from: a small window in the corner of the screen. A drag from it carries the files
// that are named on the command line.
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace {

class Source : public QWidget {
public:
    Source()
        : QWidget(nullptr, Qt::Window | Qt::X11BypassWindowManagerHint)
    {
        setWindowTitle("Drag source");
        setGeometry(0, 0, 60, 60);
    }

protected:
    void mouseMoveEvent(QMouseEvent*) override
    {
        auto* drag = new QDrag(this);
        auto* files = new QMimeData;
        QList<QUrl> urls;
        for (const QString& path : QApplication::arguments().mid(1))
            urls.append(QUrl::fromLocalFile(path));
        files->setUrls(urls);
        drag->setMimeData(files);
        drag->exec(Qt::CopyAction);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    Source source;
    source.show();
    return QApplication::exec();
}
