// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/pictures.h"

namespace quilvane {

namespace {

Ref<Picture> loadOnce(Ref<Picture>& kept, std::string_view name)
{
    if (!kept)
        kept = Picture::load(name);
    return kept;
}

} // namespace

Ref<Picture> Quilvane_200()
{
    static Ref<Picture> kept;
    return loadOnce(kept, "Quilvane_200");
}

Ref<Picture> Quilvane_2001()
{
    static Ref<Picture> kept;
    return loadOnce(kept, "Quilvane_2001");
}

Ref<Picture> Quilvane_1001()
{
    static Ref<Picture> kept;
    return loadOnce(kept, "Quilvane_1001");
}

Ref<Picture> Quilvane_1002()
{
    static Ref<Picture> kept;
    return loadOnce(kept, "Quilvane_1002");
}

Ref<Picture> Quilvane_100()
{
    static Ref<Picture> kept;
    return loadOnce(kept, "Quilvane_100");
}

} // namespace quilvane
