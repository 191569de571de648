// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Window1.h"

namespace quilvane {

void Window1::doPDFCheckThread()
{
    if (!searchText->empty())
        stageMatches();
}

} // namespace quilvane
