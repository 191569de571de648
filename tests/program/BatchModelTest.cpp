// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Searches and drops of random trees, compared with a simple and slow model of a run.
#include "program/ProgramTest.h"

#include "scan/pictureName.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <random>

namespace quilvane {

namespace {

namespace fs = std::filesystem;

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

/// Like the pattern ".txt", whose dot stands for any character.
bool hasAfterOne(const std::string& name, const char* letters)
{
    return lower(name).find(letters, 1) != std::string::npos;
}

/// Like the pattern "\.txt".
bool hasAfterDot(const std::string& name, const char* letters)
{
    return lower(name).find(std::string(".") + letters) != std::string::npos;
}

std::string extension(const fs::path& path)
{
    const std::string name = path.filename();
    return "." + name.substr(name.rfind('.') + 1);
}

struct Model {
    std::map<std::string, Rows> contents; // of the files that can be read as text, by path
    bool subfolders = true;
    Rows rows;
    Rows staged;
    Rows files;
    Rows folders;
    Rows lastText; // the addresses in it
    int count = 0;

    void searchFolder(const std::string& folder)
    {
        list(folder, { "txt", "csv", "doc" }, /*isLockFileListed=*/false);
        readListed();
        walkFolders();
        flush();
        endRun();
    }

    void drop(const Rows& items)
    {
        lastText.clear();
        count = 0;
        for (const std::string& item : items) {
            if (fs::is_directory(item)) {
                list(item, { "txt", "csv", "pdf", "doc" }, /*isLockFileListed=*/true);
                readListed();
            } else {
                rows.insert(rows.end(), contents[item].begin(), contents[item].end());
                count = int(contents[item].size());
            }
            walkFolders();
            flush();
        }
        endRun();
    }

private:
    void endRun()
    {
        staged.clear();
        files.clear();
        folders.clear();
    }

    void list(const std::string& folder, const std::vector<const char*>& kinds, bool isLockFileListed)
    {
        for (const fs::directory_entry& child : fs::directory_iterator(folder)) {
            const std::string name = child.path().filename();
            if (subfolders && child.is_directory() && !child.is_symlink())
                folders.push_back(child.path());
            for (const char* kind : kinds) {
                if (hasAfterDot(name, kind) && (isLockFileListed || name.find("~$") == std::string::npos))
                    files.push_back(child.path());
            }
        }
    }

    void readListed()
    {
        for (const std::string& file : files) {
            const std::string kind = extension(file);
            if (hasAfterDot(kind, "doc"))
                readWord(file);
            else if (hasAfterDot(kind, "pdf"))
                stageLastText();
            else if (hasAfterDot(kind, "txt"))
                readText(file);
            else if (hasAfterDot(kind, "csv"))
                readDelimited(file);
        }
    }

    void walkFolders()
    {
        for (const std::string& folder : folders)
            walk(folder, {});
    }

    void walk(const fs::path& folder, Rows above)
    {
        const std::string self = fs::canonical(folder);
        if (std::find(above.begin(), above.end(), self) != above.end())
            return;
        above.push_back(self);
        std::vector<fs::path> below;
        Rows listed;
        for (const fs::directory_entry& child : fs::directory_iterator(folder)) {
            if (child.is_directory())
                below.push_back(child.path());
            for (const char* kind : { "txt", "csv", "docx" }) {
                if (hasAfterOne(child.path().filename(), kind))
                    listed.push_back(child.path());
            }
        }
        for (const std::string& file : listed) {
            const std::string kind = extension(file);
            if (hasAfterOne(kind, "txt"))
                readText(file);
            if (hasAfterOne(kind, "docx"))
                readWord(file);
            else if (hasAfterOne(kind, "csv"))
                readDelimited(file);
        }
        for (const fs::path& each : below)
            walk(each, above);
    }

    void readText(const std::string& file)
    {
        lastText.clear();
        readDelimited(file);
    }

    void readDelimited(const std::string& file)
    {
        if (fs::is_directory(file)) // can't be opened
            return;
        lastText = contents[fs::canonical(file)]; // the path may lead through a link
        stageLastText();
    }

    /// None of these files can be parsed.
    void readWord(const std::string& file)
    {
        if (fs::path(file).filename().native().find("~$") != std::string::npos)
            return;
        lastText = { "sample@example.com" };
        stageLastText();
    }

    void stageLastText()
    {
        staged.insert(staged.end(), lastText.begin(), lastText.end());
        count += int(lastText.size());
    }

    void flush()
    {
        rows.insert(rows.end(), staged.begin(), staged.end());
        Rows left;
        for (const std::string& row : rows) {
            const bool isKnown = std::any_of(left.begin(), left.end(),
                [&](const std::string& other) { return lower(row) == lower(other); });
            if (!isKnown && !looksLikePictureName(row))
                left.push_back(row);
        }
        rows = left;
    }
};

class BatchModelTest : public ProgramTest {
protected:
    std::size_t below(std::size_t count) { return random() % count; }

    void makeTree(const fs::path& root, int depth)
    {
        static const char* const fileNames[]
            = { "a.txt", "B.CSV", "c.pdf", "d.doc", "e.docx", "f.txt.csv", "g.csv.txt", "~$h.txt", "~$i.docx",
                  "j.txt.bak", "k.png", "l.doc.pdf", "mytxt", "n.csv.docx", "o.tsv", "p.txt.pdf" };
        static const char* const folderNames[] = { "sub", "old.txt", "report.docx", "data.csv", "more" };
        fs::create_directories(root);
        for (std::size_t files = below(7); files > 0; --files) {
            const fs::path path = root / fileNames[below(std::size(fileNames))];
            Rows& addresses = model.contents[path];
            addresses.clear();
            for (std::size_t i = below(5); i > 0; --i)
                addresses.push_back(std::string(1, "aAbBc"[below(5)]) + (below(9) ? "" : "png")
                    + std::to_string(below(40)) + "@Y.org");
            std::string text;
            for (const std::string& address : addresses)
                text += "mail " + address + ",\n";
            std::ofstream(path) << text;
        }
        for (std::size_t folders = depth > 0 ? below(4) : 0; folders > 0; --folders)
            makeTree(root / folderNames[below(std::size(folderNames))], depth - 1);
        // Not to folders above the tree, which hold the trees of earlier rounds.
        const bool isTop = depth == greatestDepth;
        std::error_code taken;
        if (below(6) == 0)
            fs::create_directory_symlink(isTop ? root : root.parent_path(), root / "link.txt", taken);
    }

    Rows anyItems(const fs::path& root)
    {
        Rows all{ root };
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
            const std::string name = entry.path().filename();
            // A PDF or Word file that is dropped itself and can't be read shows a message.
            if (entry.is_directory()
                || (!hasAfterOne(name, "pdf") && !hasAfterOne(name, "doc")
                    && (hasAfterOne(name, "txt") || hasAfterOne(name, "csv"))))
                all.push_back(entry.path());
        }
        Rows items;
        for (std::size_t i = 1 + below(3); i > 0; --i)
            items.push_back(all[below(all.size())]);
        return items;
    }

    static constexpr int greatestDepth = 3;
    std::mt19937 random{ 7 };
    Model model;
};

TEST_F(BatchModelTest, anyTreeGivesWhatTheRulesSay)
{
    for (int round = 0; round < 60; ++round) {
        const fs::path root = folder / ("tree" + std::to_string(round));
        makeTree(root, greatestDepth);
        model.subfolders = below(4) != 0;
        window().subFolderSearch.setValue(model.subfolders);
        if (below(2) == 0) {
            desktop.willSelect(root);
            window().importFolderBtn.Push();
            model.searchFolder(root);
        } else {
            const Rows items = anyItems(root);
            window().Canvas1.Drop(DragItem({ items.begin(), items.end() }));
            model.drop(items);
        }
        ASSERT_EQ(rows(), model.rows) << round;
        ASSERT_EQ(window().rCounter, model.count) << round;
        if (below(5) == 0) {
            window().clearBtn_Action();
            model.rows.clear();
        }
    }
}

} // namespace

} // namespace quilvane
