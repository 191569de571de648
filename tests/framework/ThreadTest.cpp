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

/// Notes in the log that it was destroyed, and yields meanwhile, as a destructor may.
class Witness {
public:
    Witness(std::string& log, std::string text)
        : m_log(log)
        , m_text(std::move(text))
    {
    }
    ~Witness()
    {
        yieldToThreads();
        m_log += m_text;
    }

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
    EXPECT_THROW(thread.Run(), ThreadAlreadyRunningException);
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
            log += name; // the end of one does not cost another its slice
        };
        threads.back()->Run();
    }
    for (int i = 0; i < 4; ++i) {
        log += '|';
        yieldToThreads();
    }
    EXPECT_EQ(log, "a0b0|a1b1|a2b2|ab|");
}

TEST_F(Threads, KillUnwindsTheBodyFromItsYield)
{
    const TempFolder folder;
    const ThreadSlice slice(1);
    Thread thread;
    thread.RunEvent = [&] {
        const Witness witness(log, "unwound");
        const auto stream = itemAt(folder / "export")->CreateTextFile();
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

TEST_F(Threads, ABodyKillsWhoWaitsForItAndItself)
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
        inner.Kill();
        log += "not reached";
    };
    outer.Run();
    EXPECT_EQ(log, "inner;outer;");
    EXPECT_FALSE(outer.isRunning());
}

TEST_F(Threads, ExceptionsInFlightStayOnTheirStack)
{
    const ThreadSlice slice(1);
    const auto whatIsInFlight = [] {
        try {
            throw;
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
    };
    Thread thread;
    thread.RunEvent = [&] {
        EXPECT_EQ(std::uncaught_exceptions(), 0);
        EXPECT_FALSE(std::current_exception());
        try {
            throw std::runtime_error("the body's");
        } catch (...) {
            yieldToThreads();
            log += whatIsInFlight();
        }
    };
    try {
        throw std::runtime_error("the caller's, ");
    } catch (...) {
        thread.Run();
        log += whatIsInFlight();
    }
    yieldToThreads();
    EXPECT_EQ(log, "the caller's, the body's");
}

TEST_F(Threads, HasTheStackThatIsAskedFor)
{
    Thread thread;
    thread.setStackSize(16 * Thread::defaultStackSize);
    thread.RunEvent = [this] {
        volatile char frame[8 * Thread::defaultStackSize];
        frame[0] = 'x';
        log += frame[0];
    };
    thread.Run();
    EXPECT_EQ(log, "x");
}

} // namespace

} // namespace quilvane
