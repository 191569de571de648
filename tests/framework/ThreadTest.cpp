// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/threads/Thread.h"

#include "framework/EventGuard.h"
#include "framework/exceptions.h"
#include "framework/files/FolderItem.h"
#include "framework/files/TextOutputStream.h"
#include "support/ScriptedDesktop.h"
#include "support/TempFolder.h"

#include <new>
#include <string>

#include <gtest/gtest.h>

namespace quilvane {

TEST(ThreadTest, runsToItsEndInsideRunAndNotTwiceAtOnce)
{
    std::string log;
    Thread thread;
    thread.Run(); // without a body
    thread.RunEvent = [&] {
        log += "body";
        EXPECT_THROW(thread.Run(), ThreadAlreadyRunningException);
        log += ',';
    };
    thread.Run();
    thread.Run();
    EXPECT_EQ(log, "body,body,");
}

TEST(ThreadTest, killUnwindsTheBodyAndClosesItsStreams)
{
    const TempFolder folder;
    std::string log;
    Thread thread;
    thread.RunEvent = [&] {
        const auto stream = itemAt(folder / "export")->CreateTextFile();
        stream->WriteLine("half");
        try {
            thread.Kill();
            log += "not reached";
        } catch (const std::exception&) {
            log += "taken for an error";
        }
    };
    thread.Run();
    thread.Kill(); // nothing runs
    EXPECT_EQ(log, "");
    EXPECT_EQ(folder.count(), 0) << "what was half-written is gone";

    Thread inner;
    inner.RunEvent = [&] { thread.Kill(); };
    thread.RunEvent = [&] {
        inner.Run();
        log += "not reached";
    };
    thread.Run();
    EXPECT_EQ(log, "") << "killed by a body that it has started";
}

TEST(ThreadTest, anExceptionInTheBodyEndsOnlyTheBody)
{
    ScriptedDesktop desktop;
    Thread thread("Worker");
    std::string log;
    runGuarded("handler", [&] {
        thread.RunEvent = [] { throw std::bad_alloc(); };
        desktop.willReport({ "memory" });
        thread.Run();
        log += "goes on,";
        thread.RunEvent = [] { throw QuitUnwinding(); };
        thread.Run();
        log += "not reached";
    });
    thread.RunEvent = [&log] { log += "again"; };
    thread.Run();
    EXPECT_EQ(log, "goes on,again");
}

} // namespace quilvane
