// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/startUp.h"

int main(int argc, char** argv)
{
    return quilvane::startUp(argc, argv);
}
