// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/dialogs/MessageDialog.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quilvane {

/// The files that an open dialog shows at first; the user can choose to see all others.
struct OfferedFiles {
    std::string_view words; // a name for this kind of files, shown to the user
    std::span<const std::string_view> marks; // of names that contain one of these, in upper or lower case
};

/// Everything that the program asks of the desktop. The one interface that a test, or a demo without a user,
/// replaces to answer for the user. Paths are bytes. Every call waits for its answer.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// The desktop in use: the real one unless another was put in its place.
    static Desktop& current();
    /// Replaces the real desktop by `desktop`, which the caller must keep alive; nullptr restores the real
    /// one.
    static void use(Desktop* desktop);

    /// These three return the chosen path; nothing on cancel. Each starts in the folder of its own last
    /// choice.
    virtual std::optional<std::string> chooseFileToOpen(std::string_view title, const OfferedFiles& files)
        = 0;
    /// A name that is typed without a suffix gets that of `defaultName`, except in the desktop's own dialog.
    virtual std::optional<std::string> chooseFileToSave(std::string_view title, std::string_view defaultName)
        = 0;
    virtual std::optional<std::string> chooseFolder(std::string_view title) = 0;

    virtual void showMessage(std::string_view text) = 0;
    virtual MessageDialog::Button showDialog(const MessageDialog& dialog) = 0;
    /// A failure: what happened, and where.
    virtual void showError(std::string_view what, std::string_view where) = 0;

    /// Shows that a page is being loaded from `host`, and how many bytes have come, until `bytesSoFar`
    /// returns nothing. False if the user cancels it. Returns true before that only if the program is
    /// quitting.
    virtual bool waitForPage(
        std::string_view host, const std::function<std::optional<std::uint64_t>()>& bytesSoFar)
        = 0;

    /// Opens a file in the application that the desktop assigns to it. False if there is none.
    virtual bool openWithDefaultApplication(std::string_view path) = 0;
};

} // namespace quilvane
