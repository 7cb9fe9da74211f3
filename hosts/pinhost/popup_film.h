// Pictures of a notice on its way: one whenever a quarter more or less of it is to be seen, and one
// when its busy bar has gone. A quarter counts by the room that it takes on the screen and by how
// opaque it is.
//
//     PopupFilm film(strFolder);
//     ...  // shows the notice; film.Begin(hPopup) right before it comes
//     film.Finish();  // 01.png, 02.png, ... and strip.png with all of them in the folder
#pragma once

#include <windows.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/handle.h"

namespace pinhost {

class PopupFilm {
public:
    // An absolute path, ANSI; the folder is made when it is missing. Empty: nothing is filmed.
    explicit PopupFilm(std::string strFolder) : m_strFolder(std::move(strFolder)) {}
    PopupFilm(const PopupFilm&) = delete;
    PopupFilm& operator=(const PopupFilm&) = delete;
    ~PopupFilm() = default;

    void Begin(HWND hPopup);

    // To be called when the notice has closed. The number of pictures. Throws EnvironmentError.
    std::size_t Finish();

private:
    void Main(const std::stop_token& stop) noexcept;
    void TakeFrame();
    void DropRepeated();
    mvp::Bitmap Join() const;

    std::string m_strFolder;
    HWND m_hPopup = nullptr;
    RECT m_area{};  // of the screen
    std::vector<mvp::Bitmap> m_frames;
    std::jthread m_thread;  // last: it uses the others
};

}  // namespace pinhost
