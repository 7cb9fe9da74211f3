// richtext FILE: a rich text as the library shows it, as a picture or as the text of one of its
// stages.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>

#include "common/screenshot.h"
#include "pinhost/commands/commands.h"
#include "pinhost/option_values.h"
#include "pinhost/text.h"
#include "platform/handle.h"
#include "richtext/control/html_drawer.h"
#include "richtext/dump.h"

namespace pinhost {
namespace {

constexpr int kMargin = 8;
// Nobody looks at more; a bitmap of this size is what any display can have.
constexpr LONG kMaxPicture = 8192;

std::string ReadTextFile(const std::string& strFile) {
    std::ifstream file(PathFromAnsi(strFile), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) {
        throw EnvironmentError("the file " + Utf8FromAnsi(strFile) + " cannot be read");
    }
    return text;
}

void PrintFailure(const char* pszFailure) noexcept {
    std::fprintf(stderr, "%s\n", pszFailure);
}

class RichTextCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command = app.add_subcommand("richtext", "Lay a rich text out and show it");
        command->add_option("file", m_strFile, "the markup, in the system's ANSI code page")
            ->required();
        command->add_option("--width", m_nWidth, "width of the text in pixels")
            ->check(WholeNumber(1, 4000))
            ->capture_default_str();
        command->add_option("--style-sheet", m_strSheet,
                            "a file with the style sheet to use in place of the built-in one");
        auto* picture = command->add_option("--screenshot", m_strScreenshot,
                                            "write a picture of the text to this PNG file");
        const CLI::Validator number = AnyWholeNumber<int>();
        command->add_option("--hover", m_nHover, "draw link N as if the mouse were over it")
            ->check(number)
            ->needs(picture);
        command->add_option("--focus", m_nFocus, "draw link N with the keyboard's focus")
            ->check(number)
            ->needs(picture);
        command->add_option("--dump", m_strDump, "print a stage as text")
            ->check(OneOf({"markup", "style", "layout"}));
        return command;
    }

    Outcome Run(const HostOptions&) override {
        if (m_strScreenshot.empty() && m_strDump.empty()) {
            throw UsageError("--screenshot or --dump is needed");
        }
        const std::string markup = ReadTextFile(m_strFile);
        CHtmlDrawer drawer(nullptr, mvp::richtext::SystemShell(), &PrintFailure);
        if (!m_strSheet.empty()) {
            drawer.SetStyleSheet(ReadTextFile(m_strSheet).c_str());
        }
        drawer.SetText(markup);
        CheckLinks(drawer.LinkCount());
        if (!m_strScreenshot.empty()) {
            drawer.SetMargins(kMargin, kMargin);
        }
        const SIZE size = drawer.Measure(PictureWidth());
        if (!m_strScreenshot.empty()) {
            TakePicture(drawer, size);
        }

        Outcome outcome;
        outcome.strText = m_strDump.empty() ? drawer.PlainText() : Dump(drawer, markup);
        outcome.strText = Utf8FromAnsi(outcome.strText);
        outcome.json["result"] = "shown";
        outcome.json["width"] = size.cx;
        outcome.json["height"] = size.cy;
        outcome.json["links"] = drawer.LinkCount();
        outcome.json["text"] = outcome.strText;
        return outcome;
    }

private:
    int PictureWidth() const { return m_strScreenshot.empty() ? m_nWidth : m_nWidth + 2 * kMargin; }

    void CheckLinks(int nLinks) const {
        for (const auto& link : {m_nHover, m_nFocus}) {
            if (link && (*link < 0 || *link >= nLinks)) {
                throw UsageError("there is no link " + std::to_string(*link) + ": the text has " +
                                 std::to_string(nLinks) + ", counted from 0");
            }
        }
    }

    std::string Dump(const CHtmlDrawer& drawer, const std::string& strMarkup) const {
        const mvp::richtext::RichText& text = drawer.RichText();
        if (m_strDump == "markup") {
            return mvp::richtext::DumpMarkup(strMarkup);
        }
        if (m_strDump == "style") {
            return mvp::richtext::DumpStyles(text.Document());
        }
        return mvp::richtext::DumpLayout(text.Document(), text.Boxes());
    }

    void TakePicture(CHtmlDrawer& drawer, SIZE size) const {
        const RECT area = {0, 0, PictureWidth(), std::clamp(size.cy, 1L, kMaxPicture)};
        const mvp::WindowDc screen(nullptr);
        const mvp::MemoryDc memory(CreateCompatibleDC(screen.get()));
        const mvp::Bitmap bitmap(CreateCompatibleBitmap(screen.get(), area.right, area.bottom));
        if (!memory || !bitmap) {
            throw EnvironmentError("no bitmap for the picture");
        }
        drawer.SetHoverLink(m_nHover.value_or(kNoLink));
        drawer.SetFocusLink(m_nFocus.value_or(kNoLink));
        {
            const mvp::DcSelection selection(memory.get(), bitmap.get());
            FillRect(memory.get(), &area, GetSysColorBrush(COLOR_WINDOW));
            drawer.Draw(memory.get(), area, area);
        }
        std::string error;
        if (!mvp::SaveBitmapPng(bitmap.get(), AbsolutePath(m_strScreenshot), error)) {
            throw EnvironmentError("the picture failed: " + error);
        }
    }

    std::string m_strFile;
    std::string m_strSheet;
    std::string m_strScreenshot;
    std::string m_strDump;
    int m_nWidth = 360;
    std::optional<int> m_nHover;
    std::optional<int> m_nFocus;
};

}  // namespace

std::unique_ptr<Command> MakeRichTextCommand() {
    return std::make_unique<RichTextCommand>();
}

}  // namespace pinhost
