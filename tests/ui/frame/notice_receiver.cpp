// A program of another process that takes the suite's notices, for the tests of NotifyEvent.
//
//     notice_receiver CLASS MODE FILE
//
// makes a window of class CLASS, then the file FILE.ready. MODE "answer": writes the first notice
// to FILE and ends; "hang": takes no message until it is ended; "late": takes none until FILE.go
// exists, then answers. A file appears whole, by its renaming; none is replaced, which would fail
// while another process reads it.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

std::string g_strFile;

void WriteFileAtOnce(const std::string& strFile, const std::string& strText) {
    const std::string temporary = strFile + ".tmp";
    if (FILE* pFile = std::fopen(temporary.c_str(), "wb")) {
        std::fwrite(strText.data(), 1, strText.size(), pFile);
        std::fclose(pFile);
        MoveFileA(temporary.c_str(), strFile.c_str());
    }
}

LRESULT CALLBACK Proc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_COPYDATA)
        return DefWindowProcA(hWnd, message, wParam, lParam);
    const auto& record = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
    WriteFileAtOnce(g_strFile, std::to_string(record.dwData) + " " + std::to_string(wParam) + " " +
                                   std::to_string(record.cbData) + " " +
                                   static_cast<const char*>(record.lpData));
    PostQuitMessage(0);
    return TRUE;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    g_strFile = argv[3];
    WNDCLASSA info{};
    info.lpfnWndProc = Proc;
    info.hInstance = GetModuleHandleA(nullptr);
    info.lpszClassName = argv[1];
    RegisterClassA(&info);
    CreateWindowA(argv[1], "receiver", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                  info.hInstance, nullptr);
    WriteFileAtOnce(g_strFile + ".ready", "");
    if (std::strcmp(argv[2], "hang") == 0)
        Sleep(INFINITE);
    const std::string go = g_strFile + ".go";
    while (std::strcmp(argv[2], "late") == 0 &&
           GetFileAttributesA(go.c_str()) == INVALID_FILE_ATTRIBUTES)
        Sleep(5);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0)
        DispatchMessageA(&message);
}
