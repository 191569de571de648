// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Picture.h"

namespace quilvane {

// The pictures of the windows, each loaded at its first use and then kept. A failed load gives nil and is
// tried again at the next call.

/// The drop area of the main window.
Ref<Picture> Quilvane_200();
/// The search results.
Ref<Picture> Quilvane_2001();
/// The filter dialog.
Ref<Picture> Quilvane_1001();
/// The search dialog.
Ref<Picture> Quilvane_1002();
/// The About window.
Ref<Picture> Quilvane_100();

} // namespace quilvane
