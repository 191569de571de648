// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later

// The program sees the framework and not what it is made of: the first include compiles, the second must not.
#include "framework/Ref.h"

#include <QWidget>
