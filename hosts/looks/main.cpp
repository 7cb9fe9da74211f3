// looks: opens every dialog of the library in each of its states and writes down what stands there.
//
//     looks [--pictures FOLDER] [--only NAME] [--colours NAME] [--close-button] OUTPUT
//     looks --listen dialogs|flows [--only NAME] [--keys NUMBER] OUTPUT
//
// Writes an array of JSON objects to the file OUTPUT, one for each dialog and state: see walker.h.
// "broken" is a dialog of its own that breaks rules, opened when NAME asks for it alone.
// The language is that of the folder that it is started in, the resolution the system's.
// scripts/looks runs it under each, and judges. With --listen it writes what a screen reader gets
// of them instead, see listening.h, which scripts/access judges. It exits with 1 and a reason when
// a state cannot be reached.
#include <windows.h>

#include <array>
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#include <mvpingui/mvpingui.h>

#include "common/screenshot.h"
#include "looks/colours.h"
#include "looks/dialogs.h"
#include "looks/listening.h"
#include "looks/visitor.h"
#include "looks/walker.h"
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <nlohmann/json.hpp>

namespace {

struct Options {
    std::string strPictures;
    std::string strOnly;
    std::string strColours = "usual";
    bool bCloseButton = false;
    std::string strListen;
    int nKeys = 10'000;
    std::string strOutput;
};

// Notices come at once while it lives, as somebody sees them who has switched animation off.
class StillWindows {
public:
    StillWindows() {
        SystemParametersInfoA(SPI_GETCLIENTAREAANIMATION, 0, &m_bBefore, 0);
        Set(FALSE);
    }
    StillWindows(const StillWindows&) = delete;
    StillWindows& operator=(const StillWindows&) = delete;
    ~StillWindows() { Set(m_bBefore); }

private:
    static void Set(BOOL bAnimated) {
        SystemParametersInfoA(SPI_SETCLIENTAREAANIMATION, 0,
                              reinterpret_cast<void*>(static_cast<INT_PTR>(bAnimated)), 0);
    }

    BOOL m_bBefore = TRUE;
};

nlohmann::ordered_json WalkAll(const Options& options) {
    auto walked = nlohmann::ordered_json::array();
    const char* kind = "";
    const auto look = [&](const std::string& strDialog, const std::string& strState, HWND hWindow) {
        const bool opened = walked.empty() || walked.back()["dialog"] != strDialog;
        walked.push_back(
            {{"dialog", strDialog}, {"state", strState}, {"kind", kind}, {"opened", opened}});
        walked.back().update(looks::Walk(hWindow));
    };
    const auto photograph = [&](const std::string& strDialog, const std::string& strState,
                                HWND hWindow) {
        const std::string file = options.strPictures + "\\" + strDialog + ", " + strState + ".png";
        std::string error;
        if (!mvp::SaveWindowPng(hWindow, file, error)) {
            throw std::runtime_error(error);
        }
    };
    looks::Visitor visitor(look, options.strPictures.empty() ? looks::Visitor::Look() : photograph);
    std::vector<looks::Entry> entries = looks::AllDialogs();
    if (options.strOnly == looks::BrokenDialog().strName) {
        entries.push_back(looks::BrokenDialog());
    }
    for (const looks::Entry& entry : entries) {
        if (options.strOnly.empty() || options.strOnly == entry.strName) {
            kind = looks::NameOf(entry.kind);
            const bool escape = visitor.Visit(entry.strName, entry.open, entry.states,
                                              looks::Visitor::Closing::Escape);
            walked.back()["closedBy"]["Esc"] = escape;
            if (options.bCloseButton) {
                const bool button = visitor.Visit(entry.strName, entry.open, {},
                                                  looks::Visitor::Closing::CloseButton);
                walked.back()["closedBy"]["the close button"] = button;
            }
        }
    }
    return walked;
}

nlohmann::ordered_json WriteAll(const Options& options) {
    if (options.strListen.empty()) {
        return WalkAll(options);
    }
    return options.strListen == "flows" ? looks::ListenToFlows(options.strOnly, options.nKeys)
                                        : looks::ListenToDialogs(options.strOnly);
}

int Run(int argc, char** argv) {
    Options options;
    CLI::App app("Writes down what every dialog looks like");
    app.add_option("--pictures", options.strPictures, "save a picture of each there");
    app.add_option("--only", options.strOnly, "this dialog alone");
    app.add_option("--colours", options.strColours, "usual, black-on-white or white-on-black");
    app.add_flag("--close-button", options.bCloseButton, "open each again, and close it by that");
    app.add_option("--listen", options.strListen, "hear dialogs or flows as a screen reader does")
        ->check(CLI::IsMember({"dialogs", "flows"}));
    app.add_option("--keys", options.nKeys, "how many keys the flow of many keys has");
    app.add_option("OUTPUT", options.strOutput, "the file to write")->required();
    CLI11_PARSE(app, argc, argv);
    InitGUIDll();
    const StillWindows still;
    const looks::SystemColours colours(options.strColours);
    const std::string text = WriteAll(options).dump(1);
    std::ofstream file(options.strOutput, std::ios::binary);
    file << text << '\n';
    return file.good() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "looks: %s\n", error.what());
        return 1;
    }
}
