// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/ReadAhead.h"

#include "framework/FilesTest.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/TextInputStream.h"
#include "framework/processes.h"

#include <atomic>
#include <memory>
#include <semaphore>
#include <vector>

#include <sys/stat.h>

namespace quilvane {

namespace {

class ReadAheadTest : public Files {
protected:
    /// Files whose content is their own path.
    std::vector<std::string> writeFiles(int count) const
    {
        std::vector<std::string> paths;
        for (int i = 0; i < count; ++i) {
            const std::string name = "file" + std::to_string(i);
            paths.push_back(folder.write(name, folder / name));
        }
        return paths;
    }
};

TEST_F(ReadAheadTest, GivesAllFilesInTheirOrderWithFewDescriptors)
{
    for (const int count : { 0, 1, 2, 500 }) {
        const std::vector<std::string> paths = writeFiles(count);
        const std::ptrdiff_t before = openFiles();
        ReadAhead ahead(paths);
        for (std::size_t i = 0; i < paths.size(); ++i) {
            const Ref<FolderItem> item = ahead.next();
            ASSERT_EQ(item->NativePath(), paths[i]);
            const bool isRead = i % 2 == 0; // the others must be closed, too
            ASSERT_TRUE(!isRead || item->OpenAsTextFile()->ReadAll() == paths[i]);
            ASSERT_LE(openFiles(), before + 40);
        }
        EXPECT_FALSE(ahead.next());
        EXPECT_EQ(openFiles(), before);
    }
}

TEST_F(ReadAheadTest, GivesOtherItemsLikeGetFolderItem)
{
    folder.makeFolder("folder");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("nowhere", folder / "toNothing");
    std::filesystem::create_symlink("loop", folder / "loop");
    using std::filesystem::perms;
    std::filesystem::permissions(folder.path(), perms::all);
    std::filesystem::permissions(folder.write("secret", ""), perms::none);
    const Scoped nobody = notRoot();
    const std::vector<std::string> paths = { folder / "none", folder / "folder", folder / "pipe",
        folder / "toNothing", folder / "loop", folder / "secret" };
    ReadAhead ahead(paths);
    for (const std::string& path : paths) {
        const Ref<FolderItem> item = ahead.next();
        const Ref<FolderItem> expected = GetFolderItem(path);
        EXPECT_EQ(item.whyNil(), expected.whyNil());
        if (!expected)
            continue;
        EXPECT_EQ(item->Directory(), expected->Directory()) << path;
        EXPECT_EQ(item->OpenAsTextFile().whyNil(), expected->OpenAsTextFile().whyNil());
    }
}

TEST_F(ReadAheadTest, TheFirstStreamUsesTheOpenedFileAndTheNextOpensAgain)
{
    const std::vector<std::string> paths = writeFiles(2);
    ReadAhead ahead(paths);
    const Ref<FolderItem> text = ahead.next();
    const Ref<FolderItem> document = ahead.next();
    for (const std::string& path : paths)
        std::filesystem::remove(path);
    EXPECT_EQ(text->OpenAsTextFile()->ReadAll(), paths[0]);
    EXPECT_EQ(BinaryStream::Open(*document)->Read(1000).length(), paths[1].size());
    EXPECT_FALSE(text->OpenAsTextFile());
    folder.write("file1", "new");
    EXPECT_EQ(document->OpenAsTextFile()->ReadAll(), "new");
}

TEST_F(ReadAheadTest, AnOpeningThatHangsDoesNotBlockTheDestructor)
{
    struct Shared {
        std::atomic<int> opened = 0;
        std::binary_semaphore reached{ 0 };
        std::binary_semaphore goOn{ 0 };
        std::binary_semaphore gone{ 0 };
    };
    const auto shared = std::make_shared<Shared>();
    const std::vector<std::string> paths = writeFiles(100);
    const std::ptrdiff_t before = openFiles();
    {
        // The last helper deletes the opener and what it holds; the end of the test waits for that.
        const std::shared_ptr<void> lastHelper(nullptr, [shared](void*) { shared->gone.release(); });
        ReadAhead ahead(paths, [shared, lastHelper, hangs = paths[5]](const std::string& path) {
            if (path == hangs) {
                shared->reached.release();
                shared->goOn.acquire();
            }
            ++shared->opened;
            return OpenedFile::open(path);
        });
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(ahead.next()->OpenAsTextFile()->ReadAll(), paths[std::size_t(i)]);
        shared->reached.acquire();
    } // the destructor returns while the file is still being opened
    shared->goOn.release();
    shared->gone.acquire();
    EXPECT_LE(shared->opened, 5 + 32 + 1);
    EXPECT_EQ(openFiles(), before);
}

} // namespace

} // namespace quilvane
