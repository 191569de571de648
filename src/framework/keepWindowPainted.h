// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quilvane {

/// Lets the window paint itself if that was last done a while ago; takes in nothing from the user.
void keepWindowPainted();

} // namespace quilvane
