// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/sandbox.h"
#include "support/Scoped.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// What an attacker would try in a process that he has taken over.
struct Act {
    std::string_view name;
    /// Tries it. True if it succeeded.
    std::function<bool()> isDone;
    /// Whether it succeeds for every user without a sandbox.
    bool worksOutside = true;
};

/// Runs functions in a child that is in the sandbox.
class Sandboxed : public testing::Test {
protected:
    static constexpr int noDocument = -1;
    static constexpr Allowance plenty{ .memory = std::uint64_t(1) << 30, .seconds = 60 };

    void SetUp() override
    {
#ifdef __SANITIZE_ADDRESS__
        GTEST_SKIP() << "the sanitizer makes calls of its own";
#endif
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, m_pair.data()), 0);
    }

    void TearDown() override
    {
        for (const int number : m_pair)
            ::close(number);
    }

    int socket() const
    {
        return m_pair[1];
    }

    /// Runs `body` in a child, in a sandbox with these walls, or without one. Returns its status, as waitpid
    /// gives it.
    int inRoom(const std::optional<Walls>& walls, int document, const Allowance& allowance,
        const std::function<void()>& body)
    {
        const Sandbox sandbox(walls.value_or(Walls{}), socket(), document);
        const pid_t self = ::getpid();
        const pid_t child = ::fork();
        if (child == 0) {
            // Otherwise the limit on file sizes would end the child during the acts.
            std::signal(SIGXFSZ, SIG_IGN);
            if (walls && !sandbox.closeIn(allowance, self))
                ::_exit(EXIT_FAILURE);
            body();
            ::_exit(EXIT_SUCCESS);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        return status;
    }

    /// The names of the acts that succeeded.
    std::vector<std::string_view> done(const std::optional<Walls>& walls, const std::vector<Act>& acts)
    {
        const auto tryAll = [&] {
            std::string results;
            for (const Act& act : acts)
                results += act.isDone() ? 'D' : '-';
            ::send(socket(), results.data(), results.size(), 0);
        };
        EXPECT_EQ(inRoom(walls, noDocument, plenty, tryAll), 0);
        std::string results(acts.size(), '?');
        EXPECT_EQ(::recv(m_pair[0], results.data(), results.size(), MSG_DONTWAIT), ssize_t(acts.size()));
        std::vector<std::string_view> names;
        for (std::size_t i = 0; i < acts.size(); ++i)
            if (results[i] != '-')
                names.push_back(acts[i].name);
        return names;
    }

    TempFolder folder;

private:
    std::array<int, 2> m_pair{ -1, -1 };
};

bool closes(int number)
{
    return number >= 0 && ::close(number) == 0;
}

bool maps(int protection, int flags, int file)
{
    return ::mmap(nullptr, 1, protection, flags, file, 0) != MAP_FAILED;
}

bool makesStackLonger()
{
    constexpr std::size_t page = 4096;
    constexpr std::size_t deep = std::size_t(1) << 17;
    std::array<char, deep> stack{};
    void* const begin
        = reinterpret_cast<void*>((reinterpret_cast<std::uintptr_t>(stack.data()) + page) / page * page);
    return ::mremap(begin, page, 2 * deep, MREMAP_MAYMOVE) != MAP_FAILED;
}

/// Only to be read, so it would cost nothing but the kernel's tables.
bool takesAddresses()
{
    constexpr std::size_t terabyte = std::size_t(1) << 40;
    constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    return ::mmap(nullptr, terabyte, PROT_READ, flags, -1, 0) != MAP_FAILED;
}

bool connects(int number, const void* address, socklen_t size)
{
    const bool isConnected = ::connect(number, static_cast<const sockaddr*>(address), size) == 0;
    ::close(number);
    return isConnected;
}

TEST_F(Sandboxed, AnAttackerCanDoNoHarm)
{
    const Walls walls = availableWalls();
    if (!walls.seccomp)
        GTEST_SKIP() << missingFrom(walls);

    const std::string file = folder.write("list.txt", "what the user has");
    const std::string victim = folder.write("victim.txt", "");
    const int shared = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
    sockaddr_un display{ .sun_family = AF_UNIX, .sun_path = {} };
    const std::string displayPath = folder / "X0";
    std::copy(displayPath.begin(), displayPath.end(), display.sun_path);
    const int displayServer = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(displayServer, reinterpret_cast<const sockaddr*>(&display), sizeof display), 0);
    sockaddr_in web{};
    web.sin_family = AF_INET;
    web.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int webServer = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(webServer, reinterpret_cast<const sockaddr*>(&web), sizeof web), 0);
    socklen_t size = sizeof web;
    ASSERT_EQ(::getsockname(webServer, reinterpret_cast<sockaddr*>(&web), &size), 0);
    for (const int server : { displayServer, webServer })
        ASSERT_EQ(::listen(server, 9), 0);
    const pid_t self = ::getpid();
    const std::string memory = "/proc/" + std::to_string(self) + "/mem";
    char secret = 's';

    const auto memoryOf = [&](auto call) {
        char into = 0;
        const iovec local{ &into, 1 };
        const iovec remote{ &secret, 1 };
        return call(self, &local, 1ul, &remote, 1ul, 0ul) == 1;
    };
    // What Landlock of version 2 and later prevents without seccomp.
    const std::vector<Act> actsOnFiles{
        { "read a file", [&] { return closes(::open(file.c_str(), O_RDONLY)); } },
        { "list a folder", [&] { return closes(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY)); } },
        { "write a file", [&] { return closes(::open(file.c_str(), O_WRONLY)); } },
        { "make a file", [&] { return closes(::open((folder / "new").c_str(), O_RDWR | O_CREAT, 0600)); } },
        { "empty a file by opening", [&] { return closes(::open(file.c_str(), O_RDONLY | O_TRUNC)); } },
        { "move a file", [&] { return ::rename(victim.c_str(), (folder / "moved").c_str()) == 0; } },
        { "delete a file", [&] { return ::unlink((folder / "moved").c_str()) == 0; } },
        { "make a folder", [&] { return ::mkdir((folder / "made").c_str(), 0700) == 0; } },
        { "open the parent's memory", [&] { return closes(::open(memory.c_str(), O_RDWR)); }, false },
    };
    std::vector<Act> acts{
        { "empty a file by its name", [&] { return ::truncate(victim.c_str(), 0) == 0; } },
        { "empty an open file", [&] { return ::ftruncate(shared, 17) == 0; } },
        { "write into an open file", [&] { return ::pwrite(shared, "w", 1, 0) == 1; } },
        { "write through a shared mapping", [&] { return maps(PROT_WRITE, MAP_SHARED, shared); } },
        { "share memory", [&] { return maps(PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1); } },
        { "change permissions", [&] { return ::chmod(file.c_str(), 0644) == 0; } },
        { "connect by TCP", [&] { return connects(::socket(AF_INET, SOCK_STREAM, 0), &web, sizeof web); } },
        { "connect to the display",
            [&] { return connects(::socket(AF_UNIX, SOCK_STREAM, 0), &display, sizeof display); } },
        { "send a datagram",
            [&] {
                return ::sendto(::socket(AF_INET, SOCK_DGRAM, 0), "x", 1, 0,
                           reinterpret_cast<const sockaddr*>(&web), sizeof web)
                    == 1;
            } },
        { "fork",
            [] {
                const pid_t child = ::fork();
                if (child == 0)
                    ::_exit(0);
                return child > 0;
            } },
        { "start a program", [] { return ::execl("/nowhere", "/nowhere", nullptr) < 0 && errno == ENOENT; } },
        { "signal the parent", [&] { return ::kill(self, 0) == 0; } },
        { "signal the parent's thread", [&] { return ::syscall(SYS_tgkill, self, self, 0) == 0; } },
        { "watch the parent", [&] { return closes(static_cast<int>(::syscall(SYS_pidfd_open, self, 0))); } },
        { "read the parent's memory", [&] { return memoryOf(::process_vm_readv); }, false },
        { "write the parent's memory", [&] { return memoryOf(::process_vm_writev); }, false },
        { "trace the parent", [&] { return ::ptrace(PTRACE_SEIZE, self, nullptr, nullptr) == 0; }, false },
        { "let itself be looked at", [] { return ::prctl(PR_SET_DUMPABLE, 1) == 0; } },
        { "make code", [] { return maps(PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1); } },
        { "make a file in memory", [] { return closes(::memfd_create("x", 0)); } },
        { "make a second stack",
            [] { return maps(PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_GROWSDOWN, -1); } },
        { "make its stack longer", makesStackLonger },
        { "take all addresses", takesAddresses },
        { "change its number's owner", [] { return ::setsid() > 0; } },
    };
    acts.insert(acts.end(), actsOnFiles.begin(), actsOnFiles.end());

    const auto doneAnew = [&](const std::optional<Walls>& built, const std::vector<Act>& tried) {
        folder.write("victim.txt", "");
        folder.write("list.txt", "what the user has");
        std::filesystem::remove(folder / "made");
        return done(built, tried);
    };
    const auto outside = doneAnew({}, acts);
    for (const Act& act : acts)
        EXPECT_TRUE(!act.worksOutside || std::count(outside.begin(), outside.end(), act.name) > 0)
            << act.name << " fails where nothing refuses it, so it shows nothing";

    // With this kernel's version of Landlock, with that of Debian 12, and without.
    const std::vector<std::string_view> none;
    for (const int version : { walls.landlock, std::min(walls.landlock, 2), 0 }) {
        EXPECT_EQ(doneAnew(Walls{ .landlock = version, .seccomp = true }, acts), none) << version;
        if (version > 0) {
            EXPECT_EQ(doneAnew(Walls{ .landlock = version, .seccomp = false }, actsOnFiles), none) << version;
        }
    }
    EXPECT_EQ(TempFolder::contentOf(file), "what the user has");
    for (const int number : { shared, displayServer, webServer })
        ::close(number);
}

TEST_F(Sandboxed, TheDocumentCanBeReadWhereverItIsStored)
{
    const Walls walls = availableWalls();
    const std::string bytes = "the document";
    const std::string path = folder.write("document", bytes);
    const int usual = ::open(path.c_str(), O_RDONLY);
    const int deleted = ::open(folder.write("deleted", bytes).c_str(), O_RDONLY);
    ASSERT_EQ(::unlink((folder / "deleted").c_str()), 0);
    const int inMemory = ::memfd_create("document", 0);
    ASSERT_EQ(::write(inMemory, bytes.data(), bytes.size()), ssize_t(bytes.size()));
    for (const int document : { usual, deleted, inMemory }) {
        const auto read = [&] {
            const void* const mapped = ::mmap(nullptr, bytes.size(), PROT_READ, MAP_PRIVATE, document, 0);
            if (mapped == MAP_FAILED || std::memcmp(mapped, bytes.data(), bytes.size()) != 0)
                ::_exit(2);
            // The PDF library does so with a document that it can't take from memory.
            if (walls.landlock > 0
                && !closes(::open(("/dev/fd/" + std::to_string(document)).c_str(), O_RDONLY)))
                ::_exit(3);
        };
        EXPECT_EQ(inRoom(walls, document, plenty, read), 0) << document;
        ::close(document);
    }
}

TEST_F(Sandboxed, TheKernelEndsWhatCostsTooMuch)
{
    const auto signalOf
        = [](int status) { return WIFSIGNALED(status) ? WTERMSIG(status) : -WEXITSTATUS(status); };
    const Walls walls = availableWalls();
    const auto spin = [] {
        volatile bool isOn = true;
        while (isOn) { }
    };
    EXPECT_EQ(signalOf(inRoom(walls, noDocument, { .memory = plenty.memory, .seconds = 1 }, spin)), SIGXCPU);
    const auto spinInStep = [&] {
        limitStep(std::chrono::milliseconds(50));
        spin();
    };
    EXPECT_EQ(signalOf(inRoom(walls, noDocument, plenty, spinInStep)), SIGPROF);
    const auto takeMemory = [] {
        constexpr std::size_t tooMuch = std::size_t(1) << 28;
        if (::mmap(nullptr, tooMuch, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
            == MAP_FAILED)
            ::_exit(3);
    };
    EXPECT_EQ(signalOf(inRoom(walls, noDocument, { .memory = 128 << 20, .seconds = 60 }, takeMemory)), -3);
    rlimit stack{};
    ::getrlimit(RLIMIT_STACK, &stack);
    constexpr std::size_t tooDeep = std::size_t(16) << 20;
    const Scoped roomy([](const rlimit& limit) { ::setrlimit(RLIMIT_STACK, &limit); }, stack,
        { 2 * tooDeep, stack.rlim_max });
    const auto goDeep = [] {
        volatile char frame[tooDeep];
        frame[0] = 0;
        ::_exit(frame[0]);
    };
    EXPECT_EQ(inRoom({}, noDocument, plenty, goDeep), 0);
    EXPECT_EQ(signalOf(inRoom(walls, noDocument, plenty, goDeep)), SIGSEGV);
    EXPECT_EQ(signalOf(inRoom(walls, noDocument, plenty, [] { std::abort(); })), SIGABRT);
}

} // namespace

} // namespace quilvane
