// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/dialogs/Desktop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QUrl>

namespace quilvane {

TEST(WaitForPageTest, theDialogEndsWithThePageOrWhenTheUserCancels)
{
    std::optional<std::uint64_t> bytes;
    struct Case {
        const char* name;
        std::function<void(QWidget& dialog)> happens;
        bool goesOn;
    };
    const Case cases[] = {
        { "the page is here", [&](QWidget&) { bytes = std::nullopt; }, true },
        { "Cancel", [](QWidget& dialog) { dialog.findChild<QPushButton*>()->click(); }, false },
        { "Escape", [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, false },
        { "the close box", [](QWidget& dialog) { dialog.close(); }, false },
        { "the program quits", [](QWidget&) { QApplication::exit(); }, true },
    };
    const auto tryAll = [&] {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name);
            bytes = 0;
            QTimer user;
            QObject::connect(&user, &QTimer::timeout, [&] {
                QWidget* const dialog = QApplication::activeModalWidget();
                if (!dialog)
                    return; // it was answered
                const QString text = dialog->findChild<QLabel*>()->text();
                EXPECT_TRUE(text.contains("www.example.org")) << text.toStdString();
                if (text.contains(" 0 bytes"))
                    bytes = 1234;
                else if (text.contains(" 1.2 kB"))
                    c.happens(*dialog);
                else
                    ADD_FAILURE() << text.toStdString();
            });
            user.start(1);
            EXPECT_EQ(Desktop::current().waitForPage("www.example.org", [&] { return bytes; }), c.goesOn);
        }
    };
    // Inside of an event loop, like a handler: outside of one, no dialog opens after another test has called
    // QApplication::exit().
    QTimer::singleShot(0, [&] {
        tryAll();
        QApplication::exit();
    });
    QApplication::exec();
    EXPECT_FALSE(QApplication::activeModalWidget());
}

/// Replaces the desktop's own way to open a file.
class UrlTaker : public QObject {
    Q_OBJECT

public:
    UrlTaker() { QDesktopServices::setUrlHandler("file", this, "take"); }
    ~UrlTaker() override { QDesktopServices::unsetUrlHandler("file"); }

    QByteArray path;

public slots:
    void take(const QUrl& url)
    {
        path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    }
};

TEST(OpeningAFile, thePathArrivesByteForByte)
{
    UrlTaker taker;
    for (const char* path : { "/a b/c", "/a#b?c=d", "/100%41;%", "/\303\244", "/no\377utf", "//two/../dots",
             "/new\nline", "/a:b\\c" }) {
        EXPECT_TRUE(Desktop::current().openWithDefaultApplication(path));
        EXPECT_EQ(taker.path.toStdString(), path);
    }
}

} // namespace quilvane

#include "WaitForPageTest.moc"
