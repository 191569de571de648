// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"

#include <memory>
#include <string_view>

namespace quilvane {

/// A drawing from the application's resources, sharp at every size.
class Picture {
public:
    /// Nil if there is no drawing of that name.
    static Ref<Picture> load(std::string_view name);

    struct Native;
    explicit Picture(std::unique_ptr<Native> native);
    ~Picture();
    const Native& native() const { return *m_native; }

private:
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane
