// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/ReadAhead.h"

#include "framework/keepWindowPainted.h"
#include "text/ascii.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>

namespace quilvane {

namespace {

using Clock = std::chrono::steady_clock;

/// One helper is enough if the files are in the disk's cache; more would only wait for each other. But a disk
/// serves several requests at a time: 5,000 files of 4 KB that were in no cache took 0.50 s with one helper,
/// 0.25 s with eight, and no less with sixteen.
constexpr unsigned mostHelpers = 8;
/// If a run waits longer than this, it waits for a disk, and another helper is started.
constexpr std::chrono::milliseconds longWait(1);
/// What takes longer to open was not in the disk's cache.
constexpr std::chrono::microseconds slow(200);
/// How long a run waits before it calls keepWindowPainted().
constexpr std::chrono::milliseconds slice(10);

/// At most so many files are open before their turn.
constexpr std::size_t mostFiles = 32;
/// When the disk was asked for so many bytes of them, no further file is opened before the run takes one.
constexpr std::uint64_t mostBytes = 32u << 20;
/// The disk is asked for at most so many bytes of one file. The system itself fetches the rest when the run
/// gets there.
constexpr std::uint64_t mostBytesOfOne = 4u << 20;

/// The bytes that the disk is asked for.
std::uint64_t fetchedOf(const OpenedFile& file)
{
    return std::min(file.size, mostBytesOfOne);
}

/// The helper threads. They outlive the ReadAhead objects, since a walk makes one for each folder.
class Helpers {
public:
    using Work = std::function<void()>;

    /// Lets one more thread do some work. False if that needs a new thread and none can be started.
    bool begin(Work work)
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(std::move(work));
        if (m_idle >= m_waiting.size()) {
            m_workCame.notify_one();
            return true;
        }
        try {
            std::thread([this] { doWork(); }).detach();
            return true;
        } catch (const std::system_error&) { // no more threads for this process: the run goes on with fewer
                                             // or none
            m_waiting.pop_back();
            return false;
        }
    }

private:
    void doWork()
    {
        constexpr std::chrono::seconds patience(5);
        std::unique_lock lock(m_mutex);
        while (true) {
            ++m_idle;
            const bool isWorkThere
                = m_workCame.wait_for(lock, patience, [this] { return !m_waiting.empty(); });
            --m_idle;
            if (!isWorkThere)
                return;
            Work work = std::move(m_waiting.front());
            m_waiting.pop_front();
            lock.unlock();
            work();
            work = nullptr;
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_workCame;
    std::deque<Work> m_waiting; // work that no thread has begun yet
    std::size_t m_idle = 0; // threads without work
};

Helpers& helpers()
{
    static Helpers& all = *new Helpers; // never deleted: at the end of the process a thread may still use it
    return all;
}

void fetch(const std::string& folder, const std::vector<std::string>& extensions)
{
    constexpr std::size_t mostFetched = 64; // files
    constexpr off_t bytesOfOne = 64 << 10;
    const Clock::time_point start = Clock::now();
    std::vector<std::string> files;
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const std::string extension = lowerCased(entry->path().extension().native());
        const bool isWanted = std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
        if (std::error_code unknown; isWanted && entry->is_regular_file(unknown))
            files.push_back(entry->path());
        if (files.size() == mostFetched)
            break;
    }
    if (Clock::now() - start < slow)
        return; // the disk's cache holds the folder, so probably its files, too
    for (const std::string& path : files) {
        const OpenedFile file = OpenedFile::open(path);
        if (file.descriptor.isOpen())
            ::posix_fadvise(file.descriptor.number(), 0, bytesOfOne, POSIX_FADV_WILLNEED);
    }
}

} // namespace

void fetchAhead(const std::string& folder, const std::vector<std::string>& extensions)
{
    static std::atomic<bool> isBusy = false; // stays true if a disk never answers
    if (isBusy.exchange(true))
        return;
    const auto work = [folder, extensions] {
        try {
            fetch(folder, extensions);
        } catch (const std::exception&) { // no memory: the run does without
        }
        isBusy = false;
    };
    if (!helpers().begin(work))
        isBusy = false;
}

/// What the run and the helpers share. The last of them deletes it, which closes the files that the run has
/// not taken.
class ReadAhead::Queue {
public:
    Queue(std::vector<std::string> paths, Opener opener)
        : m_paths(std::move(paths))
        , m_opener(std::move(opener))
        , m_opened(std::min(m_paths.size(), mostFiles))
    {
    }

    const std::vector<std::string>& paths() const { return m_paths; }

    /// A helper's work. Returns when there is no further file to open, or after abandon().
    void openFiles();

    /// The next file, or nothing if a helper does not have it within `time`.
    std::optional<OpenedFile> take(Clock::duration time);

    void abandon();

private:
    bool isDone() const { return m_abandoned || m_begun == m_paths.size(); }
    bool hasRoom() const { return m_begun < m_taken + m_opened.size() && m_fetched < mostBytes; }

    const std::vector<std::string> m_paths;
    const Opener m_opener;

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_fileOpened;
    std::condition_variable m_roomMade;
    std::vector<std::optional<OpenedFile>> m_opened; // the file of path i is at i % size
    std::size_t m_begun = 0; // how many paths the helpers have taken
    std::size_t m_taken = 0; // how many files the run has taken
    std::uint64_t m_fetched = 0; // bytes that the disk was asked for, of files that the run has not taken
    bool m_runWaits = false;
    bool m_abandoned = false;
};

void ReadAhead::Queue::openFiles()
{
    // To wake the run for each file costs more than to open a file that is in the cache.
    constexpr std::size_t filesToWakeFor = 8;
    std::unique_lock lock(m_mutex);
    while (true) {
        if (isDone() || !hasRoom())
            m_fileOpened.notify_one();
        m_roomMade.wait(lock, [this] { return isDone() || hasRoom(); });
        if (isDone())
            return;
        const std::size_t number = m_begun++;
        lock.unlock();
        const Clock::time_point start = Clock::now();
        OpenedFile file = m_opener(m_paths[number]);
        const std::uint64_t fetched = fetchedOf(file);
        if (file.descriptor.isOpen())
            ::posix_fadvise(file.descriptor.number(), 0, static_cast<off_t>(fetched), POSIX_FADV_WILLNEED);
        const bool wasSlow = Clock::now() - start > slow;
        lock.lock();
        m_fetched += fetched;
        m_opened[number % m_opened.size()] = std::move(file);
        if (m_runWaits && (wasSlow || number >= m_taken + filesToWakeFor)) {
            m_runWaits = false;
            lock.unlock(); // or the run would wake up only to wait for the lock
            m_fileOpened.notify_one();
            lock.lock();
        }
    }
}

std::optional<OpenedFile> ReadAhead::Queue::take(Clock::duration time)
{
    std::unique_lock lock(m_mutex);
    std::optional<OpenedFile>& place = m_opened[m_taken % m_opened.size()];
    for (const Clock::time_point end = Clock::now() + time; !place;) {
        m_runWaits = true;
        if (m_fileOpened.wait_until(lock, end) == std::cv_status::timeout && !place)
            return std::nullopt;
    }
    m_runWaits = false;
    std::optional<OpenedFile> file = std::exchange(place, std::nullopt);
    ++m_taken;
    m_fetched -= fetchedOf(*file);
    if (m_begun - m_taken <= m_opened.size() / 2)
        m_roomMade.notify_all();
    return file;
}

void ReadAhead::Queue::abandon()
{
    const std::lock_guard lock(m_mutex);
    m_abandoned = true;
    m_roomMade.notify_all();
}

ReadAhead::ReadAhead(std::vector<std::string> paths, Opener opener)
    : m_queue(std::make_shared<Queue>(std::move(paths), std::move(opener)))
{
    if (!m_queue->paths().empty())
        startHelper();
}

ReadAhead::~ReadAhead()
{
    m_queue->abandon();
}

void ReadAhead::startHelper()
{
    if (helpers().begin([queue = m_queue] { queue->openFiles(); }))
        ++m_helpers;
}

Ref<FolderItem> ReadAhead::next()
{
    keepWindowPainted();
    if (m_next == m_queue->paths().size())
        return Ref<FolderItem>::nil("All files have been read.");
    const std::string& path = m_queue->paths()[m_next++];
    if (m_helpers == 0)
        return GetFolderItem(path);
    std::optional<OpenedFile> file = m_queue->take(longWait);
    if (!file && m_helpers < mostHelpers)
        startHelper();
    while (!file) {
        keepWindowPainted();
        file = m_queue->take(slice);
    }
    if (file->failure == ENOENT || file->failure == ENOTDIR)
        return GetFolderItem(path);
    return Ref<FolderItem>::make(path, std::move(*file));
}

} // namespace quilvane
