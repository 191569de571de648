// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

namespace quilvane {

ProgramTest::ProgramTest()
{
    application = makeApp();
    implicit<Window1>();
}

ProgramTest::~ProgramTest()
{
    application->Quit();
    settle();
}

Rows ProgramTest::rowsOf(const Listbox& list)
{
    Rows texts;
    for (std::size_t row = 0; row < list.ListCount(); ++row)
        texts.push_back(list.Cell(row, 0));
    return texts;
}

void ProgramTest::addRows(const Rows& addresses)
{
    for (const std::string& address : addresses)
        window().Listbox1.AddRow(address);
    EnableMenuItems();
}

void ProgramTest::searchFile(const std::string& path)
{
    desktop.willOpen(path);
    window().importBtn1.Push();
}

} // namespace quilvane
