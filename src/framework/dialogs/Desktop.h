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

/// The files that an open dialog shows at first; all others are a choice away.
struct OfferedFiles {
    std::string_view words; // what they are, for the user
    std::span<const std::string_view> marks; // names with one of these in them, in upper or lower case
};

/// Everything that the program asks of the desktop around it: the one seam at which a test, or a
/// demonstration without a person, answers in the user's stead. Paths are bytes. Every call waits for its
/// answer.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// The desktop in use: the real one unless another was put in its place.
    static Desktop& current();
    /// Puts `desktop` in the place of the real one; nullptr gives the real one back. The caller keeps it
    /// alive.
    static void use(Desktop* desktop);

    /// The chosen paths; none on cancel. Each of the three starts where its last choice was made.
    virtual std::optional<std::string> chooseFileToOpen(std::string_view title, const OfferedFiles& files)
        = 0;
    /// The suffix of `defaultName` is that of a name typed without one.
    virtual std::optional<std::string> chooseFileToSave(std::string_view title, std::string_view defaultName)
        = 0;
    virtual std::optional<std::string> chooseFolder(std::string_view title) = 0;

    virtual void showMessage(std::string_view text) = 0;
    virtual MessageDialog::Button showDialog(const MessageDialog& dialog) = 0;
    /// A failure: what happened, and where.
    virtual void showError(std::string_view what, std::string_view where) = 0;

    /// Shows that a page is loaded from `host`, and how many bytes of it have come, until `bytesSoFar` has no
    /// more to tell. False if the user cancels that. True before the end only if the program is quitting.
    virtual bool waitForPage(
        std::string_view host, const std::function<std::optional<std::uint64_t>()>& bytesSoFar)
        = 0;

    /// Hands a file to the application that the desktop assigns to it. False if nothing took it.
    virtual bool openWithDefaultApplication(std::string_view path) = 0;
};

} // namespace quilvane
