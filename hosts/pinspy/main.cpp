// pinspy: tries every door of an edit of another process, and prints what came out.
//
//     pinspy WINDOW    the edit's handle as a number; prints a line for each door
//     pinspy --serve   reads "DOOR WINDOW" from its input, line by line, and answers each with ">",
//                      the pieces in digits of its own, and an end mark; for tests
//
// It changes the edit and the clipboard, and presses keys: not for an edit whose text is needed.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include "pinspy/doors.h"
#include "pinspy/loot_text.h"

namespace {

HWND WindowOf(UINT_PTR nHandle) {
    return reinterpret_cast<HWND>(nHandle);
}

// What can be read of it; the rest as dots.
std::string Readable(std::string_view bytes) {
    std::string text;
    for (const char ch : bytes) {
        if (ch != '\0') {
            text.push_back(std::isprint(static_cast<unsigned char>(ch)) != 0 ? ch : '.');
        }
    }
    return text;
}

void TryAll(HWND hEdit) {
    for (const mvp::spy::Door& door : mvp::spy::Doors()) {
        if (door.kind == mvp::spy::DoorKind::Inside) {
            continue;
        }
        std::cout << door.nRow << ' ' << door.pszName << ':';
        for (const std::string& piece : door.open(hEdit)) {
            std::cout << ' ' << piece.front() << " \"" << Readable(piece.substr(1, 40)) << '"';
        }
        std::cout << std::endl;
    }
}

void Serve() {
    std::size_t door = 0;
    UINT_PTR edit = 0;
    while (std::cin >> door >> edit) {
        std::cout << mvp::spy::ToText(mvp::spy::Doors()[door].open(WindowOf(edit))) << std::flush;
    }
}

int Run(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: pinspy WINDOW | --serve\n", stderr);
        return 2;
    }
    if (std::string_view(argv[1]) == "--serve") {
        Serve();
        return 0;
    }
    const HWND edit = WindowOf(static_cast<UINT_PTR>(std::strtoull(argv[1], nullptr, 0)));
    if (!IsWindow(edit)) {
        std::fputs("pinspy: there is no such window\n", stderr);
        return 1;
    }
    TryAll(edit);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "pinspy: %s\n", error.what());
        return 1;
    }
}
