// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/FilesTest.h"

#include "framework/exceptions.h"
#include "framework/files/SpecialFolder.h"
#include "framework/files/displayName.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

using FolderItemTest = Files;

TEST_F(FolderItemTest, PathsBecomeAbsoluteAndLoseTrailingSlashes)
{
    const std::string current = std::filesystem::current_path().native();
    EXPECT_EQ(GetFolderItem("")->NativePath(), current);
    EXPECT_EQ(itemAt("a b")->NativePath(), (std::filesystem::path(current) / "a b").native());
    EXPECT_EQ(itemAt("/a/b//")->NativePath(), "/a/b");
    EXPECT_EQ(itemAt("/a/b/")->Name(), "b");
    EXPECT_EQ(GetFolderItem("/")->Name(), "/");
    EXPECT_EQ(GetFolderItem("/")->Child("x")->NativePath(), "/x");
    EXPECT_FALSE(GetFolderItem(std::string_view("/a\0b", 4)));
}

TEST_F(FolderItemTest, GetFolderItemIsNilForAPathThatIsGone)
{
    folder.write("file", "");
    std::filesystem::create_symlink("nowhere", folder / "toNothing");
    for (const char* name : { "", "file", "toNothing" })
        EXPECT_TRUE(GetFolderItem(folder / name)) << name;
    for (const auto& [name, reason] :
        { std::pair("none", "\" could not be opened: No such file or directory."),
            std::pair("none/below", "\" could not be opened: No such file or directory."),
            std::pair("file/below", "\" could not be opened: Not a directory.") })
        EXPECT_EQ(GetFolderItem(folder / name).whyNil(), "The file \"" + folder / name + reason);
}

TEST_F(FolderItemTest, ChildRefusesWhatIsNoName)
{
    const auto parent = GetFolderItem(folder.path());
    EXPECT_EQ(parent->Child("new\nline")->Name(), "new\nline");
    EXPECT_FALSE(parent->Child("new\nline")->Exists());
    for (const std::string_view name : { std::string_view(""), std::string_view("."), std::string_view(".."),
             std::string_view("a/b"), std::string_view("a\0", 2) })
        EXPECT_NE(parent->Child(name).whyNil().find("can't be the name"), std::string::npos) << name;
}

TEST_F(FolderItemTest, LinksAreFollowedAndRecognised)
{
    folder.write("sub/file", "");
    std::filesystem::create_symlink("sub/file", folder / "toFile");
    std::filesystem::create_symlink("sub", folder / "toSub");
    std::filesystem::create_symlink("nowhere", folder / "toNothing");
    struct Row {
        const char* name;
        bool exists, directory, alias;
    };
    for (const auto& [name, exists, directory, alias] : { Row{ "sub", true, true, false },
             Row{ "toFile", true, false, true }, Row{ "toSub", true, true, true },
             Row{ "toNothing", false, false, true }, Row{ "sub/file/below", false, false, false } }) {
        EXPECT_EQ(item(name)->Exists(), exists) << name;
        EXPECT_EQ(item(name)->Directory(), directory) << name;
        EXPECT_EQ(item(name)->Alias(), alias) << name;
    }
}

TEST_F(FolderItemTest, EachChildIsListedOnceWhateverItsName)
{
    std::vector<std::string> expected = { ".hidden", "line\nend", "not\xFFUTF-8", "sub" };
    for (const std::string& name : expected)
        folder.write(name + "/x", "");
    const auto walked = GetFolderItem(folder.path());
    std::vector<std::string> names;
    for (int i = 1; i <= walked->Count(); ++i) {
        folder.write("made on the way " + std::to_string(i), "");
        names.push_back(walked->Item(i)->Name());
        EXPECT_TRUE(walked->Item(i)->Directory());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, expected);
    EXPECT_FALSE(walked->Item(0));
    EXPECT_FALSE(walked->Item(walked->Count() + 1));
    EXPECT_EQ(walked->whyNotListed(), "");
    EXPECT_EQ(item("none")->Count(), 0);
    EXPECT_EQ(item("none")->whyNotListed(),
        "The folder \"" + folder / "none" + "\" could not be listed: No such file or directory.");
}

TEST_F(FolderItemTest, CreateAsFolderAcceptsAnExistingFolder)
{
    item("new")->CreateAsFolder();
    item("new")->CreateAsFolder();
    EXPECT_TRUE(item("new")->Directory());
    folder.write("file", "");
    EXPECT_THROW(item("file")->CreateAsFolder(), IOException);
    EXPECT_THROW(item("a/b")->CreateAsFolder(), IOException);
}

TEST_F(FolderItemTest, ApplicationDataFollowsTheBaseDirectoryRules)
{
    const Scoped home = environmentVariable("HOME", folder / "home");
    for (const auto& [setting, path] : { std::pair(folder / "data/deep", folder / "data/deep"),
             std::pair(std::string("relative/is/ignored"), folder / "home/.local/share") }) {
        const Scoped dataHome = environmentVariable("XDG_DATA_HOME", setting);
        EXPECT_EQ(SpecialFolder::ApplicationData()->NativePath(), path);
        EXPECT_EQ(permissionsOf(path), 0700u);
        EXPECT_EQ(permissionsOf(std::filesystem::path(path).parent_path()), 0700u);
    }
    const Scoped dataHome = environmentVariable("XDG_DATA_HOME", folder.write("file", "") + "/below");
    EXPECT_THROW(SpecialFolder::ApplicationData(), IOException);
}

TEST(DisplayPath, ShowsInvisibleCharacters)
{
    const std::pair<const char*, const char*> cases[] = {
        { "/a b/Grüße €😀.txt", "/a b/Grüße €😀.txt" },
        { "a\nb\x7F", R"(a\x0Ab\x7F)" },
        { "\xFF\xC3(", R"(\xFF\xC3()" },
        { "a\xE2\x80\xAEtxt.exe", R"(a\u202Etxt.exe)" },
        { "\xC2\x85", R"(\u0085)" },
    };
    for (const auto& [bytes, shown] : cases)
        EXPECT_EQ(displayPath(bytes), shown);
}

} // namespace

} // namespace quilvane
