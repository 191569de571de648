// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "app/FileTypes2.h"
#include "app/MainMenuBar.h"
#include "app/pictures.h"
#include "app/prefsModule.h"
#include "framework/threads/Timer.h"

#include <csignal>
#include <filesystem>

namespace quilvane {

using StartUpTest = ProgramTest;

TEST_F(StartUpTest, stateOfTheWindowAtTheStart)
{
    Window1& w = window();
    EXPECT_FALSE(w.results.Visible());
    EXPECT_TRUE(w.subFolderSearch.Value());
    EXPECT_TRUE(w.Timer1.Enabled());
}

TEST_F(StartUpTest, runsFromStartToQuit)
{
    Timer quit("quit", 1);
    quit.Action = [this] { application->Quit(); };
    EXPECT_EQ(application->Run([&] { quit.setEnabled(true); }), 0);
    EXPECT_EQ(TempFolder::contentOf(folder / "Quilvane/QuilvanePreferences"), "tab\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "Quilvane/Temp"));
    EXPECT_FALSE(isOpen<Window1>());
}

TEST_F(StartUpTest, quittingDuringAnErrorOfTheStartEndsTheProgram)
{
    class EndOfSession : public ScriptedDesktop {
    public:
        void showError(std::string_view what, std::string_view where) override
        {
            ScriptedDesktop::showError(what, where);
            std::raise(SIGTERM);
            settle();
        }
    } desktopOfTheSession;
    std::filesystem::create_directories(folder / "Quilvane/QuilvanePreferences");
    desktopOfTheSession.willReport(
        { "QuilvanePreferences" }); // once: nobody would answer the windows' own reports
    window();
    EXPECT_EQ(application->Run([] {}), 0);
    EXPECT_FALSE(isOpen<Window1>());
    std::filesystem::remove(folder / "Quilvane/QuilvanePreferences");
}

TEST_F(StartUpTest, preferencesFileHoldsOneUncheckedLine)
{
    struct Case {
        const char* name;
        std::string before;
        std::string delimiter;
        std::string after;
    };
    const Case cases[] = {
        { "empty: the default does not come back", "", "", "\n" },
        { "any text is taken unchecked", "comma\n", "comma", "comma\n" },
        { "only the first line counts", "a\nb\nc\n", "a", "a\n" },
        { "no line end", "x", "x", "x\n" },
        { "bytes that are no text", std::string("\xff\0\x80\n", 4), std::string("\xff\0\x80", 3),
            std::string("\xff\0\x80\n", 4) },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        folder.write("Quilvane/QuilvanePreferences", c.before);
        getPrefs();
        EXPECT_EQ(application->delimiter, c.delimiter);
        savePrefs();
        EXPECT_EQ(TempFolder::contentOf(folder / "Quilvane/QuilvanePreferences"), c.after);
    }
}

TEST_F(StartUpTest, preferencesFileThatCannotBeWrittenIsReportedWhenTheWindowCloses)
{
    std::filesystem::create_directories(folder / "Quilvane/QuilvanePreferences");
    getPrefs();
    EXPECT_EQ(application->delimiter, "tab");
    desktop.willReport({ "QuilvanePreferences" });
    window().Close();
    std::filesystem::remove(folder / "Quilvane/QuilvanePreferences");
}

TEST_F(StartUpTest, closedMainWindowComesBackEmpty)
{
    addRows({ "a@b.co" });
    application->delimiter = "kept";
    window().Close();
    EXPECT_FALSE(isOpen<Window1>());
    EXPECT_EQ(TempFolder::contentOf(folder / "Quilvane/QuilvanePreferences"), "kept\n");
    settle();
    ASSERT_TRUE(isOpen<Window1>()) << "the menu update after the last window makes the next one";
    EXPECT_TRUE(rows().empty());
}

TEST_F(StartUpTest, fileTypesAreFoundByName)
{
    const Ref<FileType> accessors[]
        = { FileTypes2::Untitled(), FileTypes2::Pdf(), FileTypes2::Text(), FileTypes2::ApplicationMsword(),
              FileTypes2::ApplicationVndMsExcel(), FileTypes2::ApplicationVndMsExcel1() };
    ASSERT_EQ(FileTypes2::types().size(), std::size(accessors));
    for (std::size_t i = 0; i < std::size(accessors); ++i)
        EXPECT_EQ(&*accessors[i], &*FileTypes2::types()[i]);
    EXPECT_EQ(&*FileType::named("text/plain"), &*FileTypes2::Text());
    EXPECT_EQ(&*FileType::named("application/vnd.ms-excel"), &*FileTypes2::ApplicationVndMsExcel())
        << "the first of two that share the name";
    EXPECT_FALSE(FileType::named("text/csv"));
}

TEST_F(StartUpTest, picturesAreLoadedOnce)
{
    for (Ref<Picture> (*accessor)() :
        { Quilvane_100, Quilvane_200, Quilvane_1001, Quilvane_1002, Quilvane_2001 })
        EXPECT_EQ(&*accessor(), &*accessor());
    EXPECT_FALSE(Picture::load("Quilvane_300"));
}

TEST_F(StartUpTest, menusFollowTheRows)
{
    for (const bool hasRow : { false, true }) {
        if (hasRow)
            addRows({ "a@b.co" });
        EnableMenuItems();
        EXPECT_EQ(FiltersApplyFilters().Enabled(), hasRow);
        EXPECT_EQ(window().clearBtn.Enabled(), hasRow);
        EXPECT_TRUE(window().searchBtn.Enabled());
        EXPECT_FALSE(window().filterBtn.Enabled()) << "no business of the pass";
    }
}

} // namespace quilvane
