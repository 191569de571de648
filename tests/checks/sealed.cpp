// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later

// The program sees the framework but not the libraries below it: the first include compiles, the second must
// not.
#include "framework/Ref.h"

#include <QWidget>
