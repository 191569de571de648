// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ScriptedDesktop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace quilvane {

ScriptedDesktop::~ScriptedDesktop()
{
    for (const Plan& missing : m_plans)
        ADD_FAILURE() << "planned, but never came: " << missing.kind
                      << (missing.texts.empty() ? "" : ", " + missing.texts.front());
}

std::optional<std::string> ScriptedDesktop::chooseFileToOpen(std::string_view, const OfferedFiles&)
{
    return next("open dialog", "").answer;
}

std::optional<std::string> ScriptedDesktop::chooseFileToSave(std::string_view, std::string_view defaultName)
{
    offeredName = defaultName;
    return next("save dialog", "").answer;
}

std::optional<std::string> ScriptedDesktop::chooseFolder(std::string_view)
{
    return next("folder dialog", "").answer;
}

void ScriptedDesktop::showMessage(std::string_view text)
{
    const Plan planned = next("message", std::string(text));
    if (!planned.texts.empty()) {
        EXPECT_EQ(planned.texts.front(), text);
    }
}

MessageDialog::Button ScriptedDesktop::showDialog(const MessageDialog& dialog)
{
    const Plan planned = next("question", dialog.Message + " " + dialog.Explanation);
    if (!planned.texts.empty()) {
        EXPECT_EQ(planned.texts.front(), dialog.Message);
    }
    return planned.button;
}

void ScriptedDesktop::showError(std::string_view what, std::string_view where)
{
    const std::string shown = std::string(what) + "\n" + std::string(where);
    for (const std::string& text : next("error", shown).texts)
        EXPECT_NE(shown.find(text), std::string::npos) << '"' << text << "\" is missing in: " << shown;
}

bool ScriptedDesktop::waitForPage(std::string_view host, const BytesSoFar& bytesSoFar)
{
    if (!m_plans.empty() && m_plans.front().kind == "page")
        return next("page", "").user(host, bytesSoFar);
    while (bytesSoFar())
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return true;
}

bool ScriptedDesktop::openWithDefaultApplication(std::string_view path)
{
    launched.emplace_back(path);
    return launchSucceeds;
}

ScriptedDesktop::Plan ScriptedDesktop::next(const std::string& kind, const std::string& shown)
{
    if (m_plans.empty() || m_plans.front().kind != kind) {
        ADD_FAILURE() << "not planned: " << kind << ' ' << shown;
        return { .kind = kind };
    }
    Plan planned = std::move(m_plans.front());
    m_plans.pop_front();
    return planned;
}

} // namespace quilvane
