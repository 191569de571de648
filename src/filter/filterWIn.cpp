// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filter/filterWIn.h"

#include "app/App.h"
#include "app/pictures.h"
#include "filter/domainFilter.h"
#include "framework/strings.h"

#include <string>

namespace quilvane {

namespace {

using Kind = ControlKind;

// clang-format off
constexpr ControlRow controlTable[] = {
    // name          kind               caption                                                  left  top  width height visible enabled tab index
    { "checkCom",    Kind::CheckBox,    ".com",                                                    29,  83,  100,   20,  true,  true,   1 },
    { "checkEdu",    Kind::CheckBox,    ".edu",                                                    29, 115,  100,   20,  true,  true,   2 },
    { "checkGov",    Kind::CheckBox,    ".gov",                                                    29, 147,  100,   20,  true,  true,   3 },
    { "checkBiz",    Kind::CheckBox,    ".biz",                                                    29, 179,  100,   20,  true,  true,   4 },
    { "checkOrg",    Kind::CheckBox,    ".org",                                                   141,  83,  100,   20,  true,  true,   5 },
    { "checkNet",    Kind::CheckBox,    ".net",                                                   141, 115,  100,   20,  true,  true,   6 },
    { "checkMil",    Kind::CheckBox,    ".mil",                                                   141, 148,  100,   20,  true,  true,   7 },
    { "checkInt",    Kind::CheckBox,    ".int",                                                   141, 179,  100,   20,  true,  true,   8 },
    { "checkDev",    Kind::CheckBox,    ".dev",                                                   141, 211,  100,   20,  true,  true,   9 },
    { "checkTV",     Kind::CheckBox,    ".tv",                                                     29, 211,  100,   20,  true,  true,  10 },
    { "check1",      Kind::CheckBox,    "",                                                       253,  82,   24,   20,  true,  true,  21 },
    { "check2",      Kind::CheckBox,    "",                                                       253, 115,   24,   20,  true,  true,  22 },
    { "check3",      Kind::CheckBox,    "",                                                       253, 146,   24,   20,  true,  true,  23 },
    { "check4",      Kind::CheckBox,    "",                                                       253, 179,   24,   20,  true,  true,  24 },
    { "check5",      Kind::CheckBox,    "",                                                       253, 211,   24,   20,  true,  true,  25 },
    { "check1Field", Kind::TextField,   "",                                                       276,  82,  295,   22,  true,  true,  26 },
    { "check2Field", Kind::TextField,   "",                                                       276, 114,  295,   22,  true,  true,  27 },
    { "check3Field", Kind::TextField,   "",                                                       276, 146,  295,   22,  true,  true,  28 },
    { "check4Field", Kind::TextField,   "",                                                       276, 178,  295,   22,  true,  true,  29 },
    { "check5Field", Kind::TextField,   "",                                                       276, 210,  295,   22,  true,  true,  30 },
    { "Label1",      Kind::Label,       "Ex: \"example.com\" or \".services\" \r",                   253,  41,  215,   19,  true,  true,  33 },
    { "cancelBtn",   Kind::PushButton,  "Cancel",                                                 488, 312,   80,   20,  true,  true,  35 },
    { "keepBtn",     Kind::PushButton,  "Keep only checked domain names",                         323, 280,  245,   20,  true,  true,  36 },
    { "removeBtn",   Kind::PushButton,  "Remove checked domain names",                            323, 248,  245,   20,  true,  true,  37 },
    { "Label3",      Kind::Label,       "Popular Domain Filter:",                                  29,  20,  190,   20,  true,  true,  42 },
    { "Label4",      Kind::Label,       "Custom Domain Filter:",                                  253,  20,  190,   20,  true,  true,  43 },
    { "Canvas1",     Kind::Canvas,      "",                                                        57, 232,  109,  100,  true,  true,  38 },
    { "Label2",      Kind::Label,       "Check each domain that you want to keep or remove.\r",    29,  41,  201,   43,  true,  true,  44 },
};
// clang-format on

struct DomainBox {
    CheckBox filterWIn::*box;
    bool App::*pref;
    DomainFilter filter;
};

constexpr DomainBox domainBoxes[] = {
    { &filterWIn::checkBiz, &App::prefBiz, DomainFilter::Biz },
    { &filterWIn::checkCom, &App::prefCom, DomainFilter::Com },
    { &filterWIn::checkDev, &App::prefDev, DomainFilter::Dev },
    { &filterWIn::checkEdu, &App::prefEdu, DomainFilter::Edu },
    { &filterWIn::checkGov, &App::prefGov, DomainFilter::Gov },
    { &filterWIn::checkInt, &App::prefInt, DomainFilter::Int },
    { &filterWIn::checkMil, &App::prefMil, DomainFilter::Mil },
    { &filterWIn::checkNet, &App::prefNet, DomainFilter::Net },
    { &filterWIn::checkOrg, &App::prefOrg, DomainFilter::Org },
    { &filterWIn::checkTV, &App::prefTV, DomainFilter::TV },
};

struct CustomRow {
    CheckBox filterWIn::*box;
    TextField filterWIn::*field;
    std::string App::*pref;
};

constexpr CustomRow customRows[customFilterCount] = {
    { &filterWIn::check1, &filterWIn::check1Field, &App::prefCheck1 },
    { &filterWIn::check2, &filterWIn::check2Field, &App::prefCheck2 },
    { &filterWIn::check3, &filterWIn::check3Field, &App::prefCheck3 },
    { &filterWIn::check4, &filterWIn::check4Field, &App::prefCheck4 },
    { &filterWIn::check5, &filterWIn::check5Field, &App::prefCheck5 },
};

constexpr std::uint32_t hintColor = 0x666666;

} // namespace

void filterWIn::Layout()
{
    setProperties({ .title = "Apply Filters",
        .width = 579,
        .height = 352,
        .minimizeButton = true,
        .maximizeButton = true,
        .resizable = true });
    place(controlTable);
    Canvas1.setBackdrop(Quilvane_1001());
    for (Label* hint : { &Label1, &Label2 }) {
        hint->setMultiline();
        hint->setTextColor(hintColor);
    }
    removeBtn.setHelpText(
        "A dot stands for any character here: .net also removes the addresses at planet.example.");
    cancelBtn.setCancel();
    cancelBtn.Action = [this] { cancelBtn_Action(); };
    keepBtn.Action = [this] { keepBtn_Action(); };
    removeBtn.Action = [this] { removeBtn_Action(); };
    // checkCom_Action to checkTV_Action: one handler for all ten.
    for (const DomainBox& row : domainBoxes) {
        CheckBox& box = this->*row.box;
        box.Action = [&box, &row] { app().*row.pref = box.Value(); };
    }
    int number = 0;
    for (const CustomRow& row : customRows) {
        CheckBox& box = this->*row.box;
        TextField& field = this->*row.field;
        const std::string ordinal = Str(++number);
        box.setAccessibleName("Use custom domain " + ordinal);
        field.setAccessibleName("Custom domain " + ordinal);
        // check1Field_TextChange to check5Field_TextChange.
        field.TextChange = [&box, &field, &row] {
            box.setValue(true); // also when the field is emptied
            app().*row.pref = field.Text();
        };
    }
}

void filterWIn::Event_Open()
{
    for (const DomainBox& row : domainBoxes)
        (this->*row.box).setValue(app().*row.pref);
    for (const CustomRow& row : customRows) {
        (this->*row.field).setText(app().*row.pref);
        (this->*row.box).setValue(!(this->*row.field).Text().empty());
    }
}

void filterWIn::cancelBtn_Action()
{
    Close();
}

DomainFilterChoice filterWIn::takeChoice()
{
    DomainFilterChoice choice;
    for (const DomainBox& row : domainBoxes)
        choice.ticked[std::size_t(row.filter)] = (this->*row.box).Value();
    for (std::size_t i = 0; i < customFilterCount; ++i) {
        const CustomRow& row = customRows[i];
        choice.customTexts[i] = (this->*row.field).Text();
        if (choice.customTexts[i].empty())
            (this->*row.box).setValue(false);
        choice.ticked[std::size_t(DomainFilter::Custom1) + i] = (this->*row.box).Value();
    }
    return choice;
}

} // namespace quilvane
