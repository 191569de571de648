// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/prefsModule.h"

#include "app/App.h"
#include "framework/files/FolderItem.h"
#include "framework/files/SpecialFolder.h"
#include "framework/files/TextInputStream.h"
#include "framework/files/TextOutputStream.h"

namespace quilvane {

namespace {

Ref<FolderItem> preferencesFile()
{
    const Ref<FolderItem> folder = SpecialFolder::ApplicationData()->Child("Quilvane");
    if (!folder->Exists())
        folder->CreateAsFolder();
    return folder->Child("QuilvanePreferences");
}

} // namespace

void getPrefs()
{
    const Ref<FolderItem> file = preferencesFile();
    if (!file->Exists()) {
        TextOutputStream::Create(*file);
        return;
    }
    if (const Ref<TextInputStream> stream = file->OpenAsTextFile()) {
        app().delimiter = stream->ReadLine();
        stream->Close();
    }
}

void savePrefs()
{
    const Ref<TextOutputStream> stream = preferencesFile()->CreateTextFile();
    stream->WriteLine(app().delimiter);
    stream->Close();
}

} // namespace quilvane
