// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Picture.h"

#include <QFile>
#include <QSvgRenderer>

namespace quilvane {

struct Picture::Native {
    mutable QSvgRenderer renderer; // its render() is not const
};

} // namespace quilvane
