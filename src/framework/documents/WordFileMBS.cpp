// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/WordFileMBS.h"

#include "framework/documents/internal/DocumentChild.h"
#include "framework/files/FileBytes.h"

#include <utility>

namespace quilvane {

namespace {

Ref<WordFileMBS> readOnce(const FileBytes& data, const DocumentLimits& limits)
{
    DocumentChild child({ .kind = DocumentKind::Word, .offset = data.offset(), .length = data.length() },
        data.descriptor(), limits);
    std::string frame;
    std::string whyNot;
    if (!child.receive(frame, 1, whyNot))
        return Ref<WordFileMBS>::nil(whyNot);
    switch (frame.empty() ? WordVerdict::NoDocument : WordVerdict(frame.front())) {
    case WordVerdict::Text:
        if (!child.receive(frame, longestDocumentText, whyNot))
            return Ref<WordFileMBS>::nil(whyNot);
        return Ref<WordFileMBS>::make(std::move(frame));
    case WordVerdict::Empty:
        return Ref<WordFileMBS>::nil("The document is empty.");
    case WordVerdict::NoDocument:
        break;
    }
    return Ref<WordFileMBS>::nil("The document is encrypted or no Word document.");
}

} // namespace

Ref<WordFileMBS> WordFileMBS::OpenData(const FileBytes& data, const DocumentLimits& limits)
{
    try {
        return readOnce(data, limits);
    } catch (const ReaderLost&) {
        return readOnce(data, limits); // by another reader
    }
}

WordFileMBS::WordFileMBS(std::string text)
    : m_text(std::move(text))
{
}

} // namespace quilvane
