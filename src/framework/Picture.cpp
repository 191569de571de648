// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Picture.h"

#include "framework/internal/PictureNative.h"
#include "framework/internal/qtText.h"

namespace quilvane {

Ref<Picture> Picture::load(std::string_view name)
{
    auto native = std::make_unique<Native>();
    const QString path = QStringLiteral(":/pictures/%1.svg").arg(toQt(name));
    if (!QFile::exists(path) || !native->renderer.load(path))
        return Ref<Picture>::nil("There is no picture named " + std::string(name) + ".");
    return Ref<Picture>::make(std::move(native));
}

Picture::Picture(std::unique_ptr<Native> native)
    : m_native(std::move(native))
{
}

Picture::~Picture() = default;

} // namespace quilvane
