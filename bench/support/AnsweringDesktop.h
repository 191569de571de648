// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/dialogs/Desktop.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

namespace quilvane {

/// Replaces the real desktop while it exists, and always gives the same answers.
class AnsweringDesktop : public Desktop {
public:
    explicit AnsweringDesktop(std::filesystem::path folder)
        : m_folder(std::move(folder))
    {
        Desktop::use(this);
    }
    ~AnsweringDesktop() override { Desktop::use(nullptr); }
    AnsweringDesktop(const AnsweringDesktop&) = delete;
    AnsweringDesktop& operator=(const AnsweringDesktop&) = delete;

    std::optional<std::string> chooseFileToOpen(std::string_view, const OfferedFiles&) override
    {
        return m_folder / "file.txt";
    }
    std::optional<std::string> chooseFileToSave(std::string_view, std::string_view) override
    {
        return m_folder / "export.csv";
    }
    std::optional<std::string> chooseFolder(std::string_view) override { return m_folder; }
    void showMessage(std::string_view text) override { std::printf("%s\n", std::string(text).c_str()); }
    MessageDialog::Button showDialog(const MessageDialog&) override { return MessageDialog::Button::Action; }
    void showError(std::string_view what, std::string_view) override { showMessage(what); }
    bool waitForPage(std::string_view, const std::function<std::optional<std::uint64_t>()>&) override
    {
        return false;
    }
    bool openWithDefaultApplication(std::string_view) override { return true; }

private:
    std::filesystem::path m_folder;
};

} // namespace quilvane
