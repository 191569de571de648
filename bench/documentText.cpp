// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Prints the text of a Word document: what docx2txt and catdoc do, for comparisons of whole runs. It links
// the document library alone, so that its start is no longer than theirs.
#include "documents/documentText.h"
#include "support/bytesOf.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: document_text FILE\n", stderr);
        return 2;
    }
    try {
        std::fputs(quilvane::documentText(quilvane::bytesOf(argv[1])).value().c_str(), stdout);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
