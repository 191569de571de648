// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/documents/DynaPDFMBS.h"
#include "framework/files/FolderItem.h"
#include "support/TempFolder.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quilvane {

/// An engine that records its events.
class RecordingEngine : public DynaPDFMBS {
public:
    using DynaPDFMBS::DynaPDFMBS;

    int open(const std::string& path)
    {
        CreateNewPDF();
        SetImportFlags(0x80000000);
        const int result = OpenImportFile(*itemAt(path));
        ImportPDFFile(1);
        return result;
    }

    std::string pageText(int number)
    {
        const std::string text = EditPage(number) ? ExtractPageText() : "no page";
        EndPage();
        return text;
    }

    std::vector<int> errors; // codes
    std::vector<std::string> warnings;
    std::string lastMessage;
    int answer = 0;

protected:
    int Event_Error(int errorCode, const std::string& errorMessage, int errorType) override
    {
        if ((errorType & warningType) != 0)
            warnings.push_back(errorMessage);
        else
            errors.push_back(errorCode);
        lastMessage = errorMessage;
        return answer;
    }
};

class Pdf : public testing::Test {
protected:
    /// The path of a copy of the flyer that qpdf has made.
    std::string rewritten(const std::string& options) const
    {
        const std::string copy = folder / "copy.pdf";
        EXPECT_EQ(std::system(("qpdf " + options + " '" + flyer + "' " + copy).c_str()), 0) << options;
        return copy;
    }

    TempFolder folder;
    const std::string flyer = QUILVANE_SAMPLES "/flyer.pdf";
    RecordingEngine engine;
};

} // namespace quilvane
