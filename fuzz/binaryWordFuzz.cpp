// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any bytes as a binary Word document and as RTF, and as the streams of a valid container, so that
// inputs get beyond the file's header.

#include "documents/word/binaryWord.h"
#include "documents/word/rtf.h"
#include "documents/word/textRuns.h"
#include "support/WordFileBuilder.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    using namespace std::string_literals;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    quilvane::textOfBinaryWord(bytes);
    quilvane::textOfBinaryWord("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"s + bytes);
    quilvane::textOfRtf("{\\rtf1" + bytes);
    quilvane::textRuns(bytes);

    const std::size_t half = size / 2;
    for (const char* version : { "\xEC\xA5\xC1", "\xDC\xA5\x68" }) {
        std::string mainStream = version + "\0"s + bytes.substr(half);
        mainStream.resize(mainStream.size() + 512);
        quilvane::textOfBinaryWord(quilvane::compoundFile(
            { { "WordDocument", mainStream }, { "0Table", bytes.substr(0, half) }, { "1Table", bytes } }));
    }
    return 0;
}
