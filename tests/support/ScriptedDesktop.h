// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/dialogs/Desktop.h"
#include "support/Scoped.h"

#include <deque>
#include <string>
#include <vector>

namespace quilvane {

/// Replaces the previous desktop while it exists, and answers the program's dialogs by a plan, in order. A
/// dialog that was not planned fails the test with its text and is cancelled; one with another text than
/// planned fails it, and so does a planned one that never came.
class ScriptedDesktop : public Desktop {
public:
    ~ScriptedDesktop() override;

    void willOpen(std::string path) { plan({ .kind = "open dialog", .answer = std::move(path) }); }
    void willCancelOpen() { plan({ .kind = "open dialog" }); }
    void willSave(std::string path) { plan({ .kind = "save dialog", .answer = std::move(path) }); }
    void willCancelSave() { plan({ .kind = "save dialog" }); }
    void willSelect(std::string folder) { plan({ .kind = "folder dialog", .answer = std::move(folder) }); }
    void willCancelSelect() { plan({ .kind = "folder dialog" }); }
    void willShow(std::string text) { plan({ .kind = "message", .texts = { std::move(text) } }); }
    void willAsk(std::string text, MessageDialog::Button button)
    {
        plan({ .kind = "question", .texts = { std::move(text) }, .button = button });
    }
    /// Each of `texts` must be somewhere in the report.
    void willReport(std::vector<std::string> texts) { plan({ .kind = "error", .texts = std::move(texts) }); }

    using BytesSoFar = std::function<std::optional<std::uint64_t>()>;
    /// A page takes so long that the dialog opens; `user` returns whether to go on waiting. If this is not
    /// planned, the page is waited for, since the machine may be slow.
    void willLookOn(std::function<bool(std::string_view host, const BytesSoFar& bytesSoFar)> user)
    {
        plan({ .kind = "page", .user = std::move(user) });
    }

    /// The name that the last save dialog offered.
    std::string offeredName;
    /// Paths that were opened in their default application.
    std::vector<std::string> launched;
    bool launchSucceeds = true;

    std::optional<std::string> chooseFileToOpen(std::string_view title, const OfferedFiles& files) override;
    std::optional<std::string> chooseFileToSave(
        std::string_view title, std::string_view defaultName) override;
    std::optional<std::string> chooseFolder(std::string_view title) override;
    void showMessage(std::string_view text) override;
    MessageDialog::Button showDialog(const MessageDialog& dialog) override;
    void showError(std::string_view what, std::string_view where) override;
    bool waitForPage(std::string_view host, const BytesSoFar& bytesSoFar) override;
    bool openWithDefaultApplication(std::string_view path) override;

private:
    struct Plan {
        std::string kind;
        std::vector<std::string> texts = {};
        std::optional<std::string> answer = {};
        MessageDialog::Button button = MessageDialog::Button::Cancel;
        std::function<bool(std::string_view, const BytesSoFar&)> user = {};
    };

    void plan(Plan plan) { m_plans.push_back(std::move(plan)); }
    /// The next plan if it is of this kind; else fails the test and returns one that cancels.
    Plan next(const std::string& kind, const std::string& shown);

    std::deque<Plan> m_plans;
    Scoped m_use{ Desktop::use, &Desktop::current(), this };
};

} // namespace quilvane
