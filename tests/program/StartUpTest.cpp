// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "program/ProgramTest.h"

#include "app/pictures.h"
#include "app/prefsModule.h"

#include <csignal>
#include <filesystem>

namespace quilvane {

class StartUpTest : public ProgramTest {
protected:
    const std::string preferences = folder / "Quilvane/QuilvanePreferences";
};

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
    std::filesystem::create_directories(preferences);
    // Once: nobody would answer the windows' own reports.
    desktopOfTheSession.willReport({ "QuilvanePreferences" });
    window();
    EXPECT_EQ(application->Run([] {}), 0);
    EXPECT_FALSE(isOpen<Window1>());
    std::filesystem::remove(preferences);
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
        EXPECT_EQ(TempFolder::contentOf(preferences), c.after);
    }
}

TEST_F(StartUpTest, preferencesFileThatCannotBeWrittenIsReportedWhenTheWindowCloses)
{
    std::filesystem::create_directories(preferences);
    getPrefs();
    EXPECT_EQ(application->delimiter, "tab");
    desktop.willReport({ "QuilvanePreferences" });
    window().Close();
    std::filesystem::remove(preferences);
}

TEST_F(StartUpTest, closedMainWindowComesBackEmpty)
{
    addRows({ "a@b.co" });
    application->delimiter = "kept";
    window().Close();
    EXPECT_FALSE(isOpen<Window1>());
    EXPECT_EQ(TempFolder::contentOf(preferences), "kept\n");
    settle();
    ASSERT_TRUE(isOpen<Window1>()) << "the menu update after the last window makes the next one";
    EXPECT_TRUE(rows().empty());
}

TEST_F(StartUpTest, allPicturesAreThereAndLoadedOnce)
{
    for (Ref<Picture> (*accessor)() :
        { Quilvane_100, Quilvane_200, Quilvane_1001, Quilvane_1002, Quilvane_2001 })
        EXPECT_EQ(&*accessor(), &*accessor());
}

} // namespace quilvane
