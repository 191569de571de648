// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/startUp.h"

#include "app/App.h"
#include "app/FileTypes2.h"
#include "app/MainMenuBar.h"
#include "app/Window1.h"
#include "app/failureWords.h"
#include "framework/EventGuard.h"
#include "framework/Runtime.h"

namespace quilvane {

std::unique_ptr<App> makeApp()
{
    FileTypes2::_Initialize();
    auto made = std::make_unique<App>();
    App& app = *made;
    app.setVersionData({ .major = 1,
        .minor = 0,
        .bug = 4,
        .stage = 0,
        .nonRelease = 0,
        .shortVersion = "1.04",
        .description = "Extracts emails from comma or tab-delimited files.",
        .legalNotice = "Quilvane. Free software, GPL-3.0-or-later." });
    app.setMenuBar(MainMenuBar::instance());
    app.addMenuHandler("FileAboutTamsrel", [&app] { return app._FileAboutTamsrel_Action(); });
    app.addMenuHandler("FileNewWindow", [&app] { return app._FileNewWindow_Action(); });
    app.addMenuHandler("FiltersApplyFilters", [&app] { return app._FiltersApplyFilters_Action(); });
    setFailureWords(failureWords);
    return made;
}

int startUp(int argc, char** argv)
{
    const Runtime runtime(argc, argv, "Quilvane");
    Runtime::setDesktopEntry("org.quilvane.Quilvane");
    const std::unique_ptr<App> app = makeApp();
    return app->Run([] { implicit<Window1>(); });
}

} // namespace quilvane
