// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Plays a harvest in the real windows, through their controls, for a machine without a screen: searches the
// samples, exports the list, and saves pictures of what a user would have seen.

#include "app/App.h"
#include "app/Window1.h"
#include "app/aboutWin.h"
#include "app/startUp.h"
#include "filter/filterWIn.h"
#include "framework/EventGuard.h"
#include "framework/Runtime.h"
#include "framework/controls/MenuBar.h"
#include "framework/dialogs/Desktop.h"
#include "search/Window2.h"
#include "search/searchWin.h"

#include <cstdlib>
#include <iostream>

namespace quilvane {

namespace {

/// Answers for the user, and prints what it was shown.
class DemoDesktop : public Desktop {
public:
    explicit DemoDesktop(std::string outputFolder)
        : m_outputFolder(std::move(outputFolder))
    {
        Desktop::use(this);
    }
    ~DemoDesktop() override { Desktop::use(nullptr); }

    std::string nextFileToOpen;
    std::string folderToSearch;
    bool failed = false;

    std::optional<std::string> chooseFileToOpen(std::string_view, const OfferedFiles&) override
    {
        return nextFileToOpen;
    }
    std::optional<std::string> chooseFileToSave(std::string_view, std::string_view defaultName) override
    {
        return m_outputFolder + '/' + std::string(defaultName);
    }
    std::optional<std::string> chooseFolder(std::string_view) override { return folderToSearch; }
    void showMessage(std::string_view text) override { std::cout << "Message: " << text << '\n'; }
    MessageDialog::Button showDialog(const MessageDialog& dialog) override
    {
        std::cout << "Question: " << dialog.Message << '\n';
        return MessageDialog::Button::Action;
    }
    void showError(std::string_view what, std::string_view where) override
    {
        std::cout << "Error: " << what << ' ' << where << '\n';
        failed = true;
    }
    bool waitForPage(
        std::string_view, const std::function<std::optional<std::uint64_t>()>&) override // loads none
    {
        return false;
    }
    bool openWithDefaultApplication(std::string_view path) override
    {
        std::cout << "Export:  " << path << '\n';
        return true;
    }

private:
    std::string m_outputFolder;
};

class Demo {
public:
    Demo(std::string samples, std::string output, DemoDesktop& desktop)
        : m_samples(std::move(samples))
        , m_output(std::move(output))
        , m_desktop(desktop)
    {
    }

    void play()
    {
        picture(implicit<Window1>(), "start");
        searchFile("contacts.csv");
        searchFile("newsletter.txt");
        picture(implicit<Window1>(), "search-file");
        implicit<Window1>().exportBtn.Push();
        searchFile("letter.doc");
        searchFile("letter.docx");
        searchFile("flyer.pdf");
        searchFolder();
        drop("newsletter.txt");
        printList();
        searchKeyword("library");
        removeDomains();
        implicit<Window1>().exportTabDelimited.Push();
        app().menuBar().Lookup("FileAboutTamsrel").Choose();
        picture(implicit<aboutWin>(), "about");
    }

private:
    void searchFile(const std::string& name)
    {
        Window1& window = implicit<Window1>();
        m_desktop.nextFileToOpen = m_samples + '/' + name;
        window.importBtn1.Push();
        std::cout << "Searched " << name << ": " << window.ProgressText.Text() << ' ' << window.results.Text()
                  << '\n';
    }

    void searchFolder()
    {
        Window1& window = implicit<Window1>();
        m_desktop.folderToSearch = m_samples;
        window.importFolderBtn.Push();
        std::cout << "Searched the folder: " << window.ProgressText.Text() << ' ' << window.results.Text()
                  << '\n';
    }

    void drop(const std::string& name)
    {
        Window1& window = implicit<Window1>();
        window.Canvas1.Drop(DragItem({ m_samples + '/' + name }));
        std::cout << "Dropped " << name << ": " << window.ProgressText.Text() << ' ' << window.results.Text()
                  << '\n';
    }

    void searchKeyword(const std::string& keyword)
    {
        implicit<Window1>().searchBtn.Push();
        searchWin& dialog = implicit<searchWin>();
        dialog.searchField.setText(keyword);
        picture(dialog, "search");
        dialog.searchBtn.Push();
        for (Window* window : WindowList::instance().openWindows()) {
            if (auto* found = dynamic_cast<Window2*>(window)) {
                std::cout << "Searched the list for \"" << keyword << "\": " << found->results.Text() << '\n';
                picture(*found, "search-results");
                found->closeBtn.Push();
            }
        }
    }

    void removeDomains()
    {
        implicit<Window1>().filterBtn.Push();
        filterWIn& dialog = implicit<filterWIn>();
        dialog.checkGov.setValue(true);
        dialog.checkEdu.setValue(true);
        dialog.check1Field.setText("co.uk");
        picture(dialog, "filter");
        dialog.removeBtn.Push();
        std::cout << "Removed .gov, .edu and co.uk: " << implicit<Window1>().results.Text() << '\n';
        picture(implicit<Window1>(), "filtered");
    }

    void picture(const Window& window, const std::string& name)
    {
        constexpr int milliseconds = 300;
        Application::DoEvents(milliseconds);
        const std::string path = m_output + '/' + name + ".png";
        window.savePicture(path);
        std::cout << "Picture: " << path << '\n';
    }

    static void printList()
    {
        const Listbox& list = implicit<Window1>().Listbox1;
        std::cout << list.ListCount() << " addresses in the list:\n";
        for (std::size_t row = 0; row < list.ListCount(); ++row)
            std::cout << "  " << list.Row(row) << '\n';
    }

    std::string m_samples;
    std::string m_output;
    DemoDesktop& m_desktop;
};

int play(int argc, char** argv)
{
    if (argc < 3) {
        std::cerr << "usage: quilvane_demo SAMPLES_FOLDER OUTPUT_FOLDER [dark]\n";
        return EXIT_FAILURE;
    }
    const Runtime runtime(argc, argv, "Quilvane");
    if (argc > 3)
        Runtime::useDarkColors();
    const std::unique_ptr<App> application = makeApp();
    DemoDesktop desktop(argv[2]);
    Demo demo(argv[1], argv[2], desktop);
    Timer start("demo", 0);
    start.Action = [&] {
        start.setEnabled(false);
        runGuarded("demo", [&demo] { demo.play(); });
        application->Quit();
    };
    const int exitCode = application->Run([&start] {
        implicit<Window1>();
        start.setEnabled(true);
    });
    return desktop.failed ? EXIT_FAILURE : exitCode;
}

} // namespace

} // namespace quilvane

int main(int argc, char** argv)
{
    return quilvane::play(argc, argv);
}
