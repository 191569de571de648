// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/dialogs/Desktop.h"

#include <QString>

namespace quilvane {

/// The real desktop.
class QtDesktop : public Desktop {
public:
    std::optional<std::string> chooseFileToOpen(std::string_view title, const OfferedFiles& files) override;
    std::optional<std::string> chooseFileToSave(
        std::string_view title, std::string_view defaultName) override;
    std::optional<std::string> chooseFolder(std::string_view title) override;
    void showMessage(std::string_view text) override;
    MessageDialog::Button showDialog(const MessageDialog& dialog) override;
    void showError(std::string_view what, std::string_view where) override;
    bool waitForPage(
        std::string_view host, const std::function<std::optional<std::uint64_t>()>& bytesSoFar) override;
    bool openWithDefaultApplication(std::string_view path) override;

private:
    // The folder of the last choice in this process; empty before the first.
    QString m_folderOpenedFrom;
    QString m_folderSavedTo;
    QString m_folderChosen;
};

} // namespace quilvane
