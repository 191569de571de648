// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/internal/ReaderProcess.h"

#include "documents/reader/buildId.h"
#include "documents/reader/frames.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"
#include "framework/logLine.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

using namespace std::chrono_literals;

/// Loading its libraries from a slow disk may take a while.
constexpr std::chrono::milliseconds timeToStart = 30s;
/// An answer needs no time, but the machine may be busy.
constexpr std::chrono::milliseconds timeToAnswer = 10s;

std::string readerInWords()
{
    return "The document reader \"" + displayPath(ReaderProcess::program()) + '"';
}

RuntimeException notStarted(const std::string& reason)
{
    return RuntimeException(readerInWords() + " could not be started: " + reason + '.');
}

RuntimeException notStarted(int errorNumber)
{
    return notStarted(std::strerror(errorNumber));
}

/// The folder of the running program, even if an upgrade has replaced its file.
std::string programFolder()
{
    std::array<char, PATH_MAX> path;
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    if (length < 0)
        return ".";
    const std::string_view program(path.data(), static_cast<std::size_t>(length));
    return std::string(program.substr(0, program.rfind('/')));
}

class FileActions {
public:
    FileActions() { ::posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void openNull(int number)
    {
        ::posix_spawn_file_actions_addopen(&m_actions, number, "/dev/null", O_RDWR, 0);
    }
    void give(int number, int as) { ::posix_spawn_file_actions_adddup2(&m_actions, number, as); }
    /// The child must not get what a library has opened without O_CLOEXEC.
    void closeFrom(int number) { ::posix_spawn_file_actions_addclosefrom_np(&m_actions, number); }

    const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

pid_t spawn(int socket)
{
    FileActions actions;
    for (const int number : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        actions.openNull(number);
    actions.give(socket, readerSocket);
    actions.closeFrom(readerSocket + 1);

    std::string& program = ReaderProcess::program();
    std::array<char*, 2> arguments{ program.data(), nullptr };
    // Of the environment only the path of the libraries, if it is set. The libraries are bound at once;
    // otherwise each child would bind them again.
    std::string bindNow = "LD_BIND_NOW=1";
    std::string libraries = "LD_LIBRARY_PATH=";
    const char* const folders = std::getenv("LD_LIBRARY_PATH");
    std::array<char*, 3> environment{ bindNow.data(), folders ? libraries.append(folders).data() : nullptr,
        nullptr };
    pid_t process = -1;
    const int failure = ::posix_spawn(
        &process, program.c_str(), actions.get(), nullptr, arguments.data(), environment.data());
    if (failure != 0)
        throw notStarted(failure);
    return process;
}

std::shared_ptr<ReaderProcess>& currentReader()
{
    static std::shared_ptr<ReaderProcess> reader;
    return reader;
}

} // namespace

ReaderLost::ReaderLost()
    : RuntimeException(readerInWords() + " has ended before it had read the document.")
{
}

bool waitForReader(int socket, short event, std::chrono::milliseconds most)
{
    constexpr std::chrono::milliseconds slice = 50ms;
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + most;
    do {
        keepWindowPainted(); // even if there is never anything to wait for
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd ready{ socket, event, 0 };
        if (::poll(&ready, 1, static_cast<int>(std::clamp(left, 0ms, slice).count())) > 0)
            return true;
    } while (Clock::now() < end);
    return false;
}

std::shared_ptr<ReaderProcess> ReaderProcess::running()
{
    std::shared_ptr<ReaderProcess>& reader = currentReader();
    if (!reader)
        reader = std::make_shared<ReaderProcess>();
    return reader;
}

void ReaderProcess::forget()
{
    currentReader().reset();
}

void ReaderProcess::reap()
{
    std::shared_ptr<ReaderProcess>& reader = currentReader();
    if (!reader || ::waitpid(reader->m_process, nullptr, WNOHANG) == 0)
        return;
    reader->m_process = -1;
    reader.reset();
}

std::string& ReaderProcess::program()
{
    static std::string path = [] {
        const std::string folder = programFolder();
        std::string beside = folder + "/quilvane-reader";
        return ::access(beside.c_str(), X_OK) == 0 ? beside
                                                   : folder + "/" QUILVANE_READER_FOLDER "/quilvane-reader";
    }();
    return path;
}

ReaderProcess::ReaderProcess()
{
    try {
        start();
        greet();
    } catch (...) {
        stop();
        throw;
    }
}

ReaderProcess::~ReaderProcess()
{
    stop();
}

std::uint32_t ReaderProcess::read(ReaderOrder order, int file, int socket)
{
    order.action = ReaderOrder::Action::Read;
    order.document = ++m_lastDocument;
    if (!sendMessage(m_socket.number(), encode(order), std::array{ file, socket }))
        throwLost();
    return order.document;
}

std::uint32_t ReaderProcess::ask(ReaderOrder::Action action, std::uint32_t document)
{
    std::string bytes;
    if (!sendMessage(m_socket.number(), encode(ReaderOrder{ .action = action, .document = document }))
        || !waitForReader(m_socket.number(), POLLIN, timeToAnswer)
        || !receiveMessage(m_socket.number(), bytes, largestControlMessage))
        throwLost();
    const std::optional<ReaderAnswer> answer = decodeAnswer(bytes);
    if (!answer || answer->document != document || answer->value == ReaderAnswer::noChild)
        throwLost();
    return answer->value;
}

void ReaderProcess::throwLost()
{
    if (currentReader().get() == this)
        forget();
    throw ReaderLost();
}

void ReaderProcess::end(std::uint32_t document)
{
    sendMessage(
        m_socket.number(), encode(ReaderOrder{ .action = ReaderOrder::Action::End, .document = document }));
}

void ReaderProcess::start()
{
    std::array<int, 2> pair{ -1, -1 };
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair.data()) != 0)
        throw notStarted(errno);
    m_socket = FileDescriptor(pair[0]);
    const FileDescriptor theirs(pair[1]);
    // Not under one of the numbers that the child's own descriptors get.
    const FileDescriptor given(::fcntl(theirs.number(), F_DUPFD_CLOEXEC, readerSocket + 1));
    m_process = spawn(given.number());
}

void ReaderProcess::greet()
{
    std::string bytes;
    if (!waitForReader(m_socket.number(), POLLIN, timeToStart))
        throw notStarted("it does not answer");
    if (!receiveMessage(m_socket.number(), bytes, largestControlMessage))
        throw notStarted("it has ended at once");
    const std::optional<ReaderGreeting> greeting = decodeGreeting(bytes);
    if (!greeting || greeting->buildId != buildId())
        throw RuntimeException(readerInWords()
            + " belongs to another version of the program. Please quit the program and start it again.");
    static bool isLogged = false;
    if (!greeting->missing.empty() && !std::exchange(isLogged, true))
        logLine(greeting->missing);
}

void ReaderProcess::stop()
{
    if (m_process < 0)
        return;
    ::kill(m_process, SIGKILL);
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) { }
    m_process = -1;
}

} // namespace quilvane
