// governed: sets settings, opens the windows that they govern, and writes down what is seen there.
//
//     governed LIBRARY_FOLDER INPUT OUTPUT
//
// INPUT holds an array of cases: {"window": NAME, "values": [VALUE...]}, and where wanted
// "bitsPerPixel" of the screen, and "change": [VALUE...], set while the window is open. A value is
// [KEY, NAME, TYPE, BYTES]: TYPE the registry's number of it, BYTES in hexadecimal digits. Nothing
// else is set, and nothing of the machine's own configuration is seen.
//
// OUTPUT gets an array of the answers: "seen" what stands in the window, null when it did not open;
// "afterwards" the same once "change" is set; "told" what the window's caller learns; "helpFiles"
// and "documents" what was to be opened when F1 and the window's own button were pressed; "sounds"
// how many were heard; "stays" the milliseconds that a notice was to stay.
//
// The library is loaded once, under the values of the first case: what it reads when it is loaded,
// and when it first logs, takes a run of its own. Its texts are looked for below the current
// directory and where the first case says. It exits with 1 and a reason when a case cannot be seen.
#include <windows.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <optional>
#include <string>

#include "common/crash_exit.h"
#include "governed/windows.h"
#include "pinhost/popup_room.h"
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

std::string Bytes(const std::string& strDigits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < strDigits.size(); i += 2) {
        bytes.push_back(static_cast<char>(std::stoi(strDigits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

void Write(pinhost::OwnConfiguration& configuration, const Json& values) {
    for (const Json& value : values) {
        const std::string key = value.at(0);
        const std::string name = value.at(1);
        configuration.Set({key.c_str(), name.c_str()}, value.at(2).get<DWORD>(),
                          Bytes(value.at(3)));
    }
}

Json SeeAll(const std::string& strFolder, const Json& cases) {
    Json answers = Json::array();
    std::optional<governed::Library> library;
    for (const Json& asked : cases) {
        pinhost::OwnConfiguration configuration;
        Write(configuration, asked.at("values"));
        if (!library) {
            library.emplace(strFolder);
        }
        answers.push_back(governed::See(
            *library, asked, [&] { Write(configuration, asked.value("change", Json::array())); }));
    }
    return answers;
}

void Run(const std::string& strFolder, const char* pszInput, const char* pszOutput) {
    // Notices come at once, as somebody sees them who has switched animation off.
    BOOL animated = TRUE;
    SystemParametersInfoA(SPI_GETCLIENTAREAANIMATION, 0, &animated, 0);
    SystemParametersInfoA(SPI_SETCLIENTAREAANIMATION, 0, nullptr, 0);
    const Json answers = SeeAll(strFolder, Json::parse(std::ifstream(pszInput)));
    SystemParametersInfoA(SPI_SETCLIENTAREAANIMATION, 0,
                          reinterpret_cast<void*>(static_cast<INT_PTR>(animated)), 0);
    std::ofstream(pszOutput, std::ios::binary) << answers.dump(1) << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    mvp::EndWithCodeOnCrash(1);
    try {
        if (argc != 4) {
            std::fputs("usage: governed LIBRARY_FOLDER INPUT OUTPUT\n", stderr);
            return 2;
        }
        Run(argv[1], argv[2], argv[3]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "governed: %s\n", error.what());
        return 1;
    }
}
