// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quilvane {

// The preferences file "QuilvanePreferences" in the folder "Quilvane" of the user's application data: one
// line, the text of App::delimiter. Both make the folder if it is missing and throw IOException if that
// fails.

/// Copies the first line of the file to App::delimiter, even if it is empty. A missing file is made, empty;
/// one that can't be read changes nothing.
void getPrefs();

/// Writes the file anew from App::delimiter. Throws NilObjectException, with the reason, if it can't be made.
void savePrefs();

} // namespace quilvane
