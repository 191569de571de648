// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The time from a program's start to the first paint of its window, compared with an empty window of the
// toolkit, and with one that shows a text, for which the toolkit reads the system's fonts:
//   start_up_benchmark PROGRAM BARE_WINDOW [ROUNDS]       with DISPLAY set to an empty screen of its own
//
// Measured from outside, by another client of the X server. The empty screen has a colour that no window
// paints, and the toolkit's windows have no background, so a new window shows the screen's colour until the
// program has painted. The first paint is when the middle of the window has another colour.
#include "support/race.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

struct Free {
    void operator()(void* block) const { std::free(block); }
};

template <typename T>
std::unique_ptr<T, Free> owned(T* reply)
{
    if (!reply)
        throw std::runtime_error("the X server does not answer");
    return std::unique_ptr<T, Free>(reply);
}

class Screen {
public:
    Screen()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(m_connection) != 0)
            throw std::runtime_error("there is no X server at DISPLAY");
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const std::array<std::uint32_t, 2> values{ bareColor, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY };
        xcb_change_window_attributes(
            m_connection, m_root, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
        xcb_clear_area(m_connection, 0, m_root, 0, 0, 0, 0);
        xcb_flush(m_connection);
    }

    ~Screen() { xcb_disconnect(m_connection); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// Waits until a window has been mapped and painted.
    void waitForPaint()
    {
        const xcb_window_t window = waitFor<xcb_map_notify_event_t>(XCB_MAP_NOTIFY);
        const auto geometry
            = owned(xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
        const auto x = std::int16_t(geometry->x + geometry->width / 2);
        const auto y = std::int16_t(geometry->y + geometry->height / 2);
        while (colorAt(x, y) == bareColor)
            std::this_thread::sleep_for(std::chrono::microseconds(100));
    }

    void waitForUnmap() { waitFor<xcb_unmap_notify_event_t>(XCB_UNMAP_NOTIFY); }

private:
    static constexpr std::uint32_t bareColor = 0xff00ff;

    template <typename Event>
    xcb_window_t waitFor(int type)
    {
        while (true) {
            const auto event = owned(xcb_wait_for_event(m_connection));
            if ((event->response_type & 0x7f) == type)
                return reinterpret_cast<const Event*>(event.get())->window;
        }
    }

    std::uint32_t colorAt(std::int16_t x, std::int16_t y)
    {
        const auto cookie
            = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, x, y, 1, 1, 0xffffff);
        const auto image = owned(xcb_get_image_reply(m_connection, cookie, nullptr));
        return *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get())) & 0xffffff;
    }

    xcb_connection_t* m_connection;
    xcb_window_t m_root = 0;
};

/// In milliseconds. `argument` may be null.
double timeToPaint(Screen& screen, const char* program, const char* argument = nullptr)
{
    const std::array arguments{ const_cast<char*>(program), const_cast<char*>(argument),
        static_cast<char*>(nullptr) };
    pid_t process = 0;
    const Clock::time_point start = Clock::now();
    if (posix_spawn(&process, program, nullptr, nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error(std::string(program) + " does not start");
    alarm(60); // ends this process if no window comes
    screen.waitForPaint();
    const Milliseconds elapsed = Clock::now() - start;
    alarm(0);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    screen.waitForUnmap();
    return elapsed.count();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc < 3) {
        std::fputs("start_up_benchmark PROGRAM BARE_WINDOW [ROUNDS]\n", stderr);
        return 2;
    }
    const int rounds = argc > 3 ? std::atoi(argv[3]) : 31;
    Screen screen;
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> withText;
    // Ratios of runs right after each other, so that other load of the machine affects both.
    std::vector<double> ratios;
    std::vector<double> ratiosWithText;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(timeToPaint(screen, argv[1]));
        bare.push_back(timeToPaint(screen, argv[2]));
        withText.push_back(timeToPaint(screen, argv[2], "Text"));
        ratios.push_back(ours.back() / bare.back());
        ratiosWithText.push_back(ours.back() / withText.back());
    }
    const double ratio = median(ratios);
    std::printf("Start to first paint, medians of %d rounds: %.1f ms\n", rounds, median(ours));
    std::printf("  the barest window              %5.1f ms; ratio %.2f goal 1.5 %s\n", median(bare), ratio,
        quilvane::verdict(ratio <= 1.5));
    std::printf(
        "  the barest window with a text  %5.1f ms; ratio %.2f\n", median(withText), median(ratiosWithText));
    return EXIT_SUCCESS;
} catch (const std::exception& exception) {
    std::fprintf(stderr, "start_up_benchmark: %s\n", exception.what());
    return EXIT_FAILURE;
}
