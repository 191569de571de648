// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/keepWindowPainted.h"

namespace quilvane {

void keepWindowPainted()
{
}

} // namespace quilvane
