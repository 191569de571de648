// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/documents/DynaPDFMBS.h"

#include <string>
#include <string_view>

namespace quilvane {

/// The PDF engine of one document, with the dialog that asks the user what to do about its errors and
/// warnings.
class MyDynaPDFMBS : public DynaPDFMBS {
public:
    /// Show no more warnings for this document; errors are still shown.
    bool IgnoreWarnings = false;

    /// Whether the class of that name handles the engine's Error event, as this one does.
    bool IsEventImplemented(std::string_view className) const { return className == "MyDynaPDFMBS"; }

protected:
    int Event_Error(int errorCode, const std::string& errorMessage, int errorType) override;
};

} // namespace quilvane
