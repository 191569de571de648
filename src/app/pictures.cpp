// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/pictures.h"

#include <map>
#include <string>

namespace quilvane {

namespace {

Ref<Picture> keptPicture(const std::string& name)
{
    static auto& kept
        = *new std::map<std::string, Ref<Picture>>; // never destroyed: it would outlive the toolkit
    Ref<Picture>& picture = kept[name];
    if (!picture)
        picture = Picture::load(name);
    return picture;
}

} // namespace

Ref<Picture> Quilvane_200()
{
    return keptPicture("Quilvane_200");
}

Ref<Picture> Quilvane_2001()
{
    return keptPicture("Quilvane_2001");
}

Ref<Picture> Quilvane_1001()
{
    return keptPicture("Quilvane_1001");
}

Ref<Picture> Quilvane_1002()
{
    return keptPicture("Quilvane_1002");
}

Ref<Picture> Quilvane_100()
{
    return keptPicture("Quilvane_100");
}

} // namespace quilvane
