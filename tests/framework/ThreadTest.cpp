// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TempFolder.h"

#include "framework/exceptions.h"
#include "framework/files/FolderItem.h"
#include "framework/files/TextOutputStream.h"
#include "framework/threads/Thread.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace quilvane {

namespace {

/// Collects what bodies throw, in place of a dialog.
class Threads : public testing::Test {
public:
    Threads()
    {
        setUncaughtThreadHandler([this](Thread& thread, const std::exception_ptr& exception) {
            EXPECT_TRUE(onMainStack());
            try {
                std::rethrow_exception(exception);
            } catch (const std::exception& error) {
                reports += thread.Name() + ": " + error.what() + ';';
            }
        });
    }
    ~Threads() override { setUncaughtThreadHandler({}); }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

protected:
    std::string log;
    std::string reports;
};

/// Notes in the log that it was destroyed.
class Witness {
public:
    Witness(std::string& log, std::string text)
        : m_log(log)
        , m_text(std::move(text))
    {
    }
    ~Witness() { m_log += m_text; }

private:
    std::string& m_log;
    std::string m_text;
};

TEST_F(Threads, RunsToItsEndInsideRunUnlessSlicesAreSet)
{
    Thread thread;
    thread.RunEvent = [this] {
        EXPECT_FALSE(onMainStack());
        for (const char c : { 'a', 'b', 'c' }) {
            log += c;
            yieldToThreads();
        }
    };
    thread.Run();
    log += '.';
    EXPECT_EQ(log, "abc.");
    EXPECT_FALSE(thread.isRunning());
    EXPECT_TRUE(onMainStack());

    log.clear();
    const ThreadSlice slice(2);
    thread.Run();
    log += '.';
    EXPECT_TRUE(thread.isRunning());
    EXPECT_TRUE(giveThreadsTheirTurn());
    log += '.';
    EXPECT_FALSE(giveThreadsTheirTurn());
    EXPECT_EQ(log, "ab.c.");
}

TEST_F(Threads, EachYieldOfTheMainStackGivesEachThreadOneSlice)
{
    const ThreadSlice slice(1);
    std::vector<std::unique_ptr<Thread>> threads;
    for (const std::string name : { "a", "b" }) {
        threads.push_back(std::make_unique<Thread>(name));
        threads.back()->RunEvent = [this, name] {
            for (int i = 0; i < 3; ++i) {
                log += name + std::to_string(i);
                yieldToThreads();
            }
        };
        threads.back()->Run();
    }
    for (int i = 0; i < 4; ++i) {
        log += '|';
        yieldToThreads();
    }
    EXPECT_EQ(log, "a0b0|a1b1|a2b2||");
}

TEST_F(Threads, RunOnARunningThreadThrows)
{
    const ThreadSlice slice(1);
    Thread thread;
    thread.RunEvent = [&thread] {
        EXPECT_THROW(thread.Run(), ThreadAlreadyRunningException);
        yieldToThreads();
    };
    thread.Run();
    EXPECT_THROW(thread.Run(), ThreadAlreadyRunningException);
}

TEST_F(Threads, KillUnwindsTheBodyFromItsYield)
{
    const TempFolder folder;
    const ThreadSlice slice(1);
    Thread thread;
    thread.RunEvent = [&] {
        const Witness witness(log, "unwound");
        const auto stream = GetFolderItem(folder / "export")->CreateTextFile();
        stream->WriteLine("half");
        try {
            yieldToThreads();
            log += "not reached";
        } catch (const std::exception&) {
            log += "taken for an error";
        }
    };
    thread.Run();
    EXPECT_EQ(folder.count(), 1) << "the stream is open";
    thread.Kill();
    EXPECT_EQ(log, "unwound");
    EXPECT_EQ(folder.count(), 0) << "the stream is closed and what was half-written is gone";
    EXPECT_FALSE(thread.isRunning());
    thread.Kill();

    thread.RunEvent = [this] { log += ", again"; };
    thread.Run();
    EXPECT_EQ(log, "unwound, again");
    EXPECT_EQ(reports, "");
}

TEST_F(Threads, ABodyKillsItself)
{
    Thread thread;
    thread.RunEvent = [&] {
        const Witness witness(log, "unwound");
        thread.Kill();
        log += "not reached";
    };
    thread.Run();
    EXPECT_EQ(log, "unwound");
    EXPECT_FALSE(thread.isRunning());
}

TEST_F(Threads, ADestructorMayYieldAndKillWhileTheBodyIsUnwound)
{
    struct Yielder {
        Thread& thread;
        ~Yielder()
        {
            yieldToThreads();
            thread.Kill();
        }
    };
    const ThreadSlice slice(1);
    Thread thread;
    thread.RunEvent = [&] {
        const Witness witness(log, "unwound");
        const Yielder yielder{ thread };
        yieldToThreads();
    };
    thread.Run();
    thread.Kill();
    EXPECT_EQ(log, "unwound");
}

TEST_F(Threads, DestroyingAThreadKillsIt)
{
    const ThreadSlice slice(1);
    const auto body = [this] {
        const Witness witness(log, "unwound;");
        while (true)
            yieldToThreads();
    };
    {
        Thread thread;
        thread.RunEvent = body;
        thread.Run();
    }
    EXPECT_EQ(log, "unwound;");

    auto thread = std::make_unique<Thread>();
    thread->RunEvent = [&, body] {
        thread.reset();
        body();
    };
    thread->Run();
    EXPECT_EQ(log, "unwound;unwound;");
}

TEST_F(Threads, WhatABodyThrowsIsHandedOnOnTheMainStack)
{
    const ThreadSlice slice(1);
    Thread outer("outer");
    outer.RunEvent = [this] {
        auto inner = std::make_unique<Thread>("inner");
        inner->RunEvent = [] { throw std::runtime_error("first"); };
        inner->Run();
        EXPECT_EQ(reports, "") << "this is no main stack";
        inner.reset();
        yieldToThreads();
        throw IOException("second");
    };
    outer.Run();
    EXPECT_EQ(reports, "inner: first;");
    yieldToThreads();
    EXPECT_EQ(reports, "inner: first;outer: second;");
    EXPECT_FALSE(outer.isRunning());
}

TEST_F(Threads, AHandlerMayGiveThreadsTheirTurn)
{
    const ThreadSlice slice(1);
    Thread failing("failing");
    Thread other("other");
    setUncaughtThreadHandler([&](Thread&, const std::exception_ptr&) {
        other.Kill();
        giveThreadsTheirTurn();
        log += "handled";
    });
    failing.RunEvent = [] {
        yieldToThreads();
        throw std::runtime_error("x");
    };
    other.RunEvent = [this] {
        const Witness witness(log, "unwound;");
        while (true)
            yieldToThreads();
    };
    failing.Run();
    other.Run();
    yieldToThreads();
    EXPECT_EQ(log, "unwound;handled");
}

TEST_F(Threads, ABodyThatWaitsForAnotherIsKilledWhenControlComesBackToIt)
{
    Thread outer;
    Thread inner;
    outer.RunEvent = [&] {
        const Witness witness(log, "outer;");
        inner.Run();
        log += "not reached";
    };
    inner.RunEvent = [&] {
        const Witness witness(log, "inner;");
        outer.Kill();
        EXPECT_TRUE(outer.isRunning());
    };
    outer.Run();
    EXPECT_EQ(log, "inner;outer;");
    EXPECT_FALSE(outer.isRunning());
}

TEST_F(Threads, ExceptionsInFlightStayOnTheirStack)
{
    const ThreadSlice slice(1);
    Thread thread;
    thread.RunEvent = [this] {
        EXPECT_EQ(std::uncaught_exceptions(), 0);
        EXPECT_FALSE(std::current_exception());
        try {
            throw std::runtime_error("the body's");
        } catch (...) {
            yieldToThreads();
            try {
                throw;
            } catch (const std::exception& error) {
                log += error.what();
            }
        }
    };
    try {
        throw std::runtime_error("the caller's");
    } catch (...) {
        thread.Run();
        try {
            throw;
        } catch (const std::exception& error) {
            log += error.what() + std::string(", ");
        }
    }
    yieldToThreads();
    EXPECT_EQ(log, "the caller's, the body's");
}

int depthOf(int levels)
{
    volatile char frame[512] = {};
    if (levels == 0)
        throw std::runtime_error("from the deep");
    frame[0] = 1;
    return depthOf(levels - 1) + frame[0];
}

TEST_F(Threads, HasTheStackThatIsAskedFor)
{
    Thread thread("deep");
    thread.setStackSize(16 * Thread::defaultStackSize);
    thread.RunEvent = [] { depthOf(10'000); };
    for (int i = 0; i < 3; ++i)
        thread.Run();
    EXPECT_EQ(reports, "deep: from the deep;deep: from the deep;deep: from the deep;");
}

TEST_F(Threads, ManySwitchesAmongManyThreads)
{
    const ThreadSlice slice(1);
    constexpr int count = 50;
    constexpr int passes = 1000;
    int total = 0;
    std::vector<std::unique_ptr<Thread>> threads;
    for (int i = 0; i < count; ++i) {
        threads.push_back(std::make_unique<Thread>());
        threads.back()->RunEvent = [&total, i] {
            std::vector<int> mine;
            for (int pass = 0; pass < passes; ++pass) {
                mine.push_back(i);
                ++total;
                yieldToThreads();
            }
            EXPECT_EQ(mine, std::vector<int>(passes, i));
        };
        threads.back()->Run();
    }
    threads.erase(threads.begin() + count / 2, threads.end());
    while (giveThreadsTheirTurn()) { }
    EXPECT_EQ(total, count / 2 * passes + count / 2);
}

} // namespace

} // namespace quilvane
