// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/sandbox.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <type_traits>

#include <fcntl.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// Where the PDF library has the encodings of East Asian documents, if they are installed.
constexpr const char* characterTables = "/usr/share/poppler";

/// The rules of Landlock in their newest form. An older kernel takes only the first members: see sizeIn().
struct Ruleset {
    std::uint64_t files = 0;
    std::uint64_t network = 0;
    std::uint64_t scopes = 0;
};

/// All that this version can forbid, so that what no rule allows is forbidden.
Ruleset everythingIn(int version)
{
    Ruleset all;
    all.files = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1; // version 1
    if (version >= 2)
        all.files |= LANDLOCK_ACCESS_FS_REFER;
    if (version >= 3)
        all.files |= 1u << 14; // truncating
    if (version >= 4)
        all.network = 3; // binding and connecting by TCP
    if (version >= 5)
        all.files |= 1u << 15; // controlling devices
    if (version >= 6)
        all.scopes = 3; // other processes' abstract sockets, and signals to them
    return all;
}

std::size_t sizeIn(int version)
{
    if (version >= 6)
        return sizeof(Ruleset);
    return version >= 4 ? 2 * sizeof(std::uint64_t) : sizeof(std::uint64_t);
}

void allow(int ruleset, int file, std::uint64_t rights)
{
    // Fails for what is in no file system, such as a file in memory: Landlock does not guard that at all.
    const landlock_path_beneath_attr rule{ .allowed_access = rights, .parent_fd = file };
    ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

struct ReleaseFilter {
    void operator()(void* filter) const { seccomp_release(filter); }
};
static_assert(std::is_same_v<scmp_filter_ctx, void*>);
using Filter = std::unique_ptr<void, ReleaseFilter>;

struct FileInMemory {
    FileInMemory() = default;
    ~FileInMemory() { ::close(number); }
    FileInMemory(const FileInMemory&) = delete;
    FileInMemory& operator=(const FileInMemory&) = delete;

    const int number = ::memfd_create("filter", MFD_CLOEXEC);
};

/// The condition that the argument, of 32 bits, has these values in the bits of the mask.
scmp_arg_cmp argument(unsigned index, std::uint64_t mask, std::uint64_t value)
{
    return { .arg = index, .op = SCMP_CMP_MASKED_EQ, .datum_a = mask, .datum_b = value };
}

scmp_arg_cmp argument(unsigned index, std::uint64_t value)
{
    return argument(index, UINT32_MAX, value);
}

// A call that an architecture does not have is passed over by the library. Without mremap: it makes a piece
// of the stack longer, which no limit on memory counts. realloc does without it.
constexpr std::array plainCalls{ SCMP_SYS(read), SCMP_SYS(readv), SCMP_SYS(pread64), SCMP_SYS(lseek),
    SCMP_SYS(close), SCMP_SYS(fstat), SCMP_SYS(munmap), SCMP_SYS(madvise), SCMP_SYS(brk), SCMP_SYS(futex),
    SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(getpid),
    SCMP_SYS(gettid), SCMP_SYS(clock_gettime), SCMP_SYS(clock_getres), SCMP_SYS(gettimeofday), SCMP_SYS(time),
    SCMP_SYS(getrandom), SCMP_SYS(poll), SCMP_SYS(ppoll), SCMP_SYS(getdents64), SCMP_SYS(setitimer),
    SCMP_SYS(sched_yield), SCMP_SYS(restart_syscall), SCMP_SYS(exit), SCMP_SYS(exit_group) };

/// A placeholder in the filter, which closeSystemCalls() replaces by the id of the process.
constexpr std::uint32_t ownProcess = 0x7A3B5C7D;

/// The filter as a program for the kernel. The library takes a while to make one, and a child has no time for
/// that.
std::vector<sock_filter> programOf(void* filter)
{
    const FileInMemory file;
    std::vector<sock_filter> program;
    if (seccomp_export_bpf(filter, file.number) != 0)
        return program;
    const off_t size = ::lseek(file.number, 0, SEEK_END);
    program.resize(static_cast<std::size_t>(size) / sizeof(sock_filter));
    if (::pread(file.number, program.data(), static_cast<std::size_t>(size), 0) != size)
        program.clear();
    return program;
}

std::vector<sock_filter> allowedCalls(const Walls& walls, int socket)
{
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)));
    if (!filter)
        return {};
    bool isBuilt = true;
    const auto permit = [&](int call, auto... conditions) {
        isBuilt &= seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, sizeof...(conditions), conditions...)
            == 0;
    };
    for (const int call : plainCalls)
        permit(call);
    permit(SCMP_SYS(recvfrom), argument(0, static_cast<unsigned>(socket)));
    permit(SCMP_SYS(sendto), argument(0, static_cast<unsigned>(socket)),
        argument(4, UINT64_MAX, 0)); // no address
    permit(SCMP_SYS(write), argument(0, STDERR_FILENO)); // the null device
#ifdef __SANITIZE_ADDRESS__
    // The sanitizers write into a pipe of their own to see whether an address can be read.
    permit(SCMP_SYS(pipe2));
    permit(SCMP_SYS(write));
#endif
    permit(SCMP_SYS(fcntl), argument(1, F_GETFL));
    // How fstat is called. That the path is empty can't be checked here, so every path can be asked for.
    permit(SCMP_SYS(newfstatat), argument(3, AT_EMPTY_PATH));
    // abort() raises its signal by this, in its own process.
    permit(SCMP_SYS(tgkill), argument(0, ownProcess), argument(2, SIGABRT));
    // No code, nothing that is shared with a file or with another process, and no second stack: RLIMIT_DATA
    // counts no stacks.
    permit(SCMP_SYS(mmap), argument(2, PROT_EXEC, 0),
        argument(3, MAP_SHARED | MAP_PRIVATE | MAP_GROWSDOWN, MAP_PRIVATE));
    permit(SCMP_SYS(mprotect), argument(2, PROT_EXEC, 0));
    // This filter can't tell one file from another: without Landlock none is opened, and the text of some
    // East Asian PDF documents is not found.
    if (walls.landlock > 0) {
        constexpr unsigned writing = O_ACCMODE | O_CREAT | O_TRUNC | O_APPEND | (O_TMPFILE & ~O_DIRECTORY);
        permit(SCMP_SYS(open), argument(1, writing, O_RDONLY));
        permit(SCMP_SYS(openat), argument(2, writing, O_RDONLY));
    }
    return isBuilt ? programOf(filter.get()) : std::vector<sock_filter>();
}

void limit(__rlimit_resource resource, rlim_t soft, rlim_t hard)
{
    const rlimit both{ soft, hard };
    ::setrlimit(resource, &both);
}

void setLimits(const Allowance& allowance, [[maybe_unused]] int document)
{
    constexpr rlim_t fewFiles = 32;
    constexpr rlim_t usualStack = rlim_t(8) << 20;
#ifndef __SANITIZE_ADDRESS__
    limit(RLIMIT_DATA, allowance.memory, allowance.memory);
    // RLIMIT_DATA does not count what is only read, but the kernel's tables of its addresses take memory,
    // too.
    constexpr rlim_t forLibraries = rlim_t(512) << 20;
    struct stat status { };
    ::fstat(document, &status);
    const rlim_t addresses = allowance.memory + static_cast<rlim_t>(status.st_size) + forLibraries;
    limit(RLIMIT_AS, addresses, addresses);
#endif
    limit(RLIMIT_STACK, usualStack, usualStack);
    // The soft limit ends the process by a signal that tells why, the hard one by a signal that it can't
    // catch.
    limit(RLIMIT_CPU, allowance.seconds, allowance.seconds + 1);
    limit(RLIMIT_CORE, 0, 0);
    limit(RLIMIT_FSIZE, 0, 0);
    limit(RLIMIT_NPROC, 0, 0);
    limit(RLIMIT_NOFILE, fewFiles, fewFiles);
}

} // namespace

Walls availableWalls()
{
    Walls walls;
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    walls.landlock = version > 0 ? static_cast<int>(version) : 0;
    walls.seccomp = ::prctl(PR_GET_SECCOMP) >= 0;
    return walls;
}

std::string missingFrom(const Walls& walls)
{
    if (walls.landlock > 0 && walls.seccomp)
        return {};
    const std::string what = walls.landlock > 0 ? "seccomp"
        : walls.seccomp                         ? "Landlock"
                                                : "Landlock and no seccomp";
    return "Documents are read with less protection: this system's kernel offers no " + what + '.';
}

Sandbox::Sandbox(const Walls& walls, int socket, int document)
    : m_walls(walls)
    , m_document(document)
    , m_filter(allowedCalls(walls, socket))
{
}

bool Sandbox::closeIn(const Allowance& allowance, pid_t parent) const
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) // it ended before the line above
        return false;
    setLimits(allowance, m_document);
    const bool isQuiet = ::clearenv() == 0 && ::chdir("/") == 0 && ::prctl(PR_SET_DUMPABLE, 0) == 0
        && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
    return isQuiet && (m_walls.landlock == 0 || closeFileSystem())
        && (!m_walls.seccomp || closeSystemCalls());
}

bool Sandbox::closeFileSystem() const
{
    const Ruleset all = everythingIn(m_walls.landlock);
    const int ruleset
        = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &all, sizeIn(m_walls.landlock), 0));
    if (ruleset < 0)
        return false;
    allow(ruleset, m_document, LANDLOCK_ACCESS_FS_READ_FILE);
    const int tables = ::open(characterTables, O_PATH | O_CLOEXEC);
    if (tables >= 0) {
        allow(ruleset, tables, LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR);
        ::close(tables);
    }
    const bool isClosed = ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    ::close(ruleset);
    return isClosed;
}

bool Sandbox::closeSystemCalls() const
{
    std::vector<sock_filter> own = m_filter;
    for (sock_filter& step : own)
        if (step.k == ownProcess)
            step.k = static_cast<std::uint32_t>(::getpid());
    const sock_fprog program{ static_cast<unsigned short>(own.size()), own.data() };
    return !own.empty() && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

void limitStep(std::chrono::milliseconds time)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const auto rest = std::chrono::duration_cast<std::chrono::microseconds>(time - seconds);
    const itimerval timer{ {}, { seconds.count(), rest.count() } };
    ::setitimer(ITIMER_PROF, &timer, nullptr);
}

} // namespace quilvane
