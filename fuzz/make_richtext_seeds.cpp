// Writes the seed corpus of the rich-text fuzz targets, and a dictionary, from the language's own
// tables: every tag, attribute, entity, colour, unit, keyword and property occurs in them.
//
//     make_richtext_seeds FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "richtext/markup/markup_tables.h"
#include "richtext/markup/text_bytes.h"
#include "richtext/style/colour_table.h"
#include "richtext/style/style_sheet.h"

namespace {

using namespace mvp::richtext;

std::vector<std::string> Split(std::string_view list) {
    std::vector<std::string> parts;
    for (auto part = NextToken(list, "|"); !part.empty(); part = NextToken(list, "|")) {
        parts.emplace_back(part);
    }
    return parts;
}

const std::vector<std::string> kValues = Split(
    "10|10px|2em|3ex|1in|2cm|15mm|12pt|1pc|50%|-2pt|+3|0x10|010|0|-1|99999999|#FF9900|#F00|red|"
    "left|center|right|top|middle|vcenter|bottom|solid|none|thick|3hgradient|metal|transparent|"
    "italic|bold|underline, overline|Verdana, Arial|file.bmp");
const std::vector<std::string> kProperties = Split(
    "font-size|font-family|font-style|font-weight|text-align|text-transform|color|"
    "background-color|text-decoration|vertical-align|border-color|border-width|size|border-style|"
    "margin|padding");

void Write(const std::filesystem::path& folder, const std::string& strSeed) {
    static int next = 0;
    std::filesystem::create_directories(folder);
    std::ofstream(folder / std::to_string(next++), std::ios::binary) << strSeed;
}

// Each in a cell, with three attributes at a time; for the layout behind a width and an empty
// sheet.
void WriteTags(const std::filesystem::path& folder, std::ostream& dictionary) {
    std::size_t value = 0;
    for (int i = 0; i < kTagCount; ++i) {
        const std::string tag(InfoOf(static_cast<TagId>(i)).name);
        dictionary << "\"<" << tag << ">\"\n\"</" << tag << ">\"\n";
        for (int j = 0; j < kAttributeCount;) {
            std::string markup = "<table border=1><tr><td>x <" + tag;
            for (const int end = j + 3; j < end && j < kAttributeCount; ++j) {
                markup.append(" ").append(NameOf(static_cast<AttributeId>(j)));
                markup += "=\"" + kValues[value++ % kValues.size()] + "\"";
            }
            markup += ">some well-known words</" + tag + "> y</table>";
            Write(folder / "markup", markup);
            Write(folder / "layout", "@\x01" + markup);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make_richtext_seeds FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    std::ofstream dictionary(folder / "richtext.dict");
    WriteTags(folder, dictionary);
    for (int i = 0; i < kAttributeCount; ++i) {
        dictionary << "\" " << NameOf(static_cast<AttributeId>(i)) << "=\"\n";
    }
    std::string entities;
    for (int i = 0; i < kEntityCount; ++i) {
        entities.append(EntityAt(i).name).append(" ");
    }
    Write(folder / "markup", entities + "a\nb\r\nc\td<!-- x --><!y><?z?> 3 < 4");
    Write(folder / "sheet", std::string(BuiltInStyleSheet()));
    for (const std::string& property : kProperties) {
        dictionary << "\"" << property << ":\"\n";
        std::string sheet = "b, .c, a:link {";
        for (const std::string& value : kValues) {
            sheet.append(property).append(":").append(value).append(";");
        }
        Write(folder / "sheet", sheet + "}/* x */ h1{}");
        // A width, a style sheet and its end, the markup.
        Write(folder / "layout", "@" + sheet + "}\x01<span class=c>x <b>y</b></span>");
    }
    for (const std::string& value : kValues) {
        Write(folder / "values", value);
    }
    for (int i = 0; i < kColourNameCount; ++i) {
        Write(folder / "values", std::string(ColourName(i)));
    }
    return 0;
}
