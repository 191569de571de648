// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Harvests one file as the program does, from disk to the rows of a list but without a window, and prints how
// many addresses it kept: bench_harvest FILE [--unique]
#include "framework/controls/RowStore.h"
#include "framework/exceptions.h"
#include "framework/files/FolderItem.h"
#include "framework/files/TextInputStream.h"
#include "scan/AddressScanner.h"
#include "scan/DuplicateIndex.h"
#include "scan/TextPieces.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

using namespace quilvane;

void addMatches(std::string_view text, RowStore& rows)
{
    forEachAddress(text, [&rows](std::string_view address) { rows.append(address); });
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return EXIT_FAILURE;
    try {
        RowStore rows;
        TextPieces pieces;
        const Ref<TextInputStream> stream = GetFolderItem(argv[1])->OpenAsTextFile();
        while (const std::size_t count = stream->Read(pieces.room()))
            addMatches(pieces.take(count), rows);
        addMatches(pieces.rest(), rows);
        if (argc > 2 && std::string_view(argv[2]) == "--unique") {
            DuplicateIndex index;
            DuplicateIndex::Pass pass(index, rows.size(), [&](std::size_t row) { return rows[row]; });
            while (pass.step()) { }
            rows.retain(0, pass.stays());
        }
        std::printf("%zu\n", rows.size());
        return EXIT_SUCCESS;
    } catch (const RuntimeException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
