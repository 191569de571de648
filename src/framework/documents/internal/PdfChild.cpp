// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/internal/PdfChild.h"

#include "framework/exceptions.h"
#include "framework/keepWindowPainted.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

constexpr int firstFreeNumber = pdfChildDocument + 1;

RuntimeException notStarted(int errorNumber)
{
    return RuntimeException(
        std::string("The PDF engine could not be started: ") + std::strerror(errorNumber) + '.');
}

FileDescriptor checked(int number)
{
    if (number < 0)
        throw notStarted(errno);
    return FileDescriptor(number);
}

/// A second number for an open file, out of the way of those that the child has.
FileDescriptor outOfTheWay(int number)
{
    return checked(::fcntl(number, F_DUPFD_CLOEXEC, firstFreeNumber));
}

/// The folder of the running program, also when an upgrade has replaced its file since.
std::string programFolder()
{
    std::array<char, PATH_MAX> path;
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    if (length < 0)
        throw notStarted(errno);
    const std::string_view program(path.data(), static_cast<std::size_t>(length));
    return std::string(program.substr(0, program.rfind('/')));
}

/// Beside the program, as it is built, or where an installation keeps it.
std::string childProgram()
{
    const std::string folder = programFolder();
    std::string beside = folder + "/quilvane-pdf";
    return ::access(beside.c_str(), X_OK) == 0 ? beside : folder + "/" QUILVANE_PDF_FOLDER "/quilvane-pdf";
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
    /// What some library has opened without O_CLOEXEC is no business of the child's.
    void closeFrom(int number) { ::posix_spawn_file_actions_addclosefrom_np(&m_actions, number); }

    const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

pid_t spawn(int socket, int document)
{
    FileActions actions;
    for (const int number : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        actions.openNull(number);
    actions.give(socket, pdfChildSocket);
    actions.give(document, pdfChildDocument);
    actions.closeFrom(firstFreeNumber);

    std::string program = childProgram();
    std::array<char*, 2> arguments = { program.data(), nullptr };
    pid_t process = -1;
    const int failure
        = ::posix_spawn(&process, program.c_str(), actions.get(), nullptr, arguments.data(), environ);
    if (failure != 0)
        throw notStarted(failure);
    return process;
}

void limit(pid_t process, __rlimit_resource resource, rlim_t most)
{
    const rlimit both = { most, most };
    ::prlimit(process, resource, &both, nullptr);
}

/// Set from outside, before the process is asked for anything: it can't lift them again.
void setLimits(pid_t process, [[maybe_unused]] std::uint64_t memory)
{
#ifndef __SANITIZE_ADDRESS__ // reserves terabytes of addresses
    limit(process, RLIMIT_AS, memory);
#endif
    limit(process, RLIMIT_CORE, 0);
    limit(process, RLIMIT_FSIZE, 0);
}

/// Waits a little for it.
bool hasAnswer(int socket)
{
    constexpr int little = 20; // ms
    pollfd answer{ socket, POLLIN, 0 };
    return ::poll(&answer, 1, little) != 0;
}

std::string inSeconds(std::chrono::milliseconds time)
{
    return std::to_string(std::chrono::round<std::chrono::seconds>(time).count()) + " seconds";
}

std::string inMebibytes(std::uint64_t bytes)
{
    return std::to_string(bytes >> 20) + " MiB";
}

} // namespace

PdfChild::PdfChild(int document, const PdfLimits& limits)
    : m_limits(limits)
{
    std::array<int, 2> pair = { -1, -1 };
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) != 0)
        throw notStarted(errno);
    m_socket = FileDescriptor(pair[0]);
    const FileDescriptor theirs(pair[1]);
    m_process = spawn(outOfTheWay(theirs.number()).number(), outOfTheWay(document).number());
    setLimits(m_process, m_limits.memory);
}

PdfChild::~PdfChild()
{
    end();
}

std::optional<PdfReply> PdfChild::ask(const PdfRequest& request, std::string& whyNot)
{
    std::optional<PdfReply> reply;
    const Transfer transfer = exchange(request, reply);
    if (reply)
        return reply;

    const int status = end();
    if (transfer == Transfer::TooLate)
        whyNot = "The PDF engine was stopped: one step took more than " + inSeconds(m_limits.time) + '.';
    else if (WIFEXITED(status) && WEXITSTATUS(status) == pdfChildOutOfMemory)
        whyNot = "The PDF engine was stopped: it needed more than " + inMebibytes(m_limits.memory)
            + " of memory.";
    else if (transfer == Transfer::Closed && WIFSIGNALED(status))
        whyNot = std::string("The PDF engine broke down: ") + ::strsignal(WTERMSIG(status)) + '.';
    else
        whyNot = "The PDF engine broke down.";
    return std::nullopt;
}

Transfer PdfChild::exchange(const PdfRequest& request, std::optional<PdfReply>& reply)
{
    const Deadline deadline = Deadline::clock::now() + m_limits.time;
    std::string bytes = encode(request);
    Transfer transfer = sendFrame(m_socket.number(), bytes, deadline);
    while (Deadline::clock::now() < deadline && !hasAnswer(m_socket.number()))
        keepWindowPainted();
    if (transfer == Transfer::Done)
        transfer = receiveFrame(m_socket.number(), bytes, largestPdfReply, deadline);
    if (transfer == Transfer::Done)
        reply = decodeReply(bytes);
    return transfer;
}

int PdfChild::end()
{
    int status = 0;
    if (m_process < 0)
        return status;
    // One that is ending by itself keeps the status that it ends with.
    ::kill(m_process, SIGKILL);
    while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR) { }
    m_process = -1;
    m_socket.close();
    return status;
}

} // namespace quilvane
