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

class Seeds {
public:
    explicit Seeds(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    void Write(const char* pszTarget, const std::string& strSeed) {
        const std::filesystem::path folder = m_folder / pszTarget;
        std::filesystem::create_directories(folder);
        char name[16];
        std::snprintf(name, sizeof(name), "%04d", m_nNext++);
        std::ofstream(folder / name, std::ios::binary) << strSeed;
    }

    // Markup serves the reader and, behind a width, a style sheet and its end, the layout.
    void WriteMarkup(const std::string& strMarkup, const std::string& strSheet = "") {
        Write("markup", strMarkup);
        Write("layout", "@" + strSheet + '\x01' + strMarkup);
    }

private:
    std::filesystem::path m_folder;
    int m_nNext = 0;
};

std::string Tagged(const std::string& strTag, const std::string& strAttributes) {
    return "x <" + strTag + strAttributes + ">some well-known words</" + strTag + "> y";
}

void WriteTags(Seeds& seeds, std::ostream& dictionary) {
    const std::string table =
        "<table border=1><tr><td>a b</td><td colspan=2 rowspan=2>c</td></tr><tr><td>";
    std::size_t value = 0;
    for (int i = 0; i < kTagCount; ++i) {
        const std::string tag(InfoOf(static_cast<TagId>(i)).name);
        dictionary << "\"<" << tag << ">\"\n\"</" << tag << ">\"\n";
        seeds.WriteMarkup(Tagged(tag, "") + Tagged(tag, " class=\"c\""),
                          ".c{padding:2px;color:red}");
        std::string attributes;
        for (int j = 0; j < kAttributeCount; ++j) {
            attributes.append(" ").append(NameOf(static_cast<AttributeId>(j)));
            attributes += "=\"" + kValues[value++ % kValues.size()] + "\"";
            if (j % 3 == 2 || j + 1 == kAttributeCount) {
                seeds.WriteMarkup(Tagged(tag, attributes));
                attributes.clear();
            }
        }
        seeds.WriteMarkup(table + Tagged(tag, "") + "</table>");
    }
    for (int i = 0; i < kAttributeCount; ++i) {
        dictionary << "\" " << NameOf(static_cast<AttributeId>(i)) << "=\"\n";
    }
    std::string entities;
    for (int i = 0; i < kEntityCount; ++i) {
        entities.append(EntityAt(i).name).append(" ");
    }
    seeds.WriteMarkup(entities);
    seeds.WriteMarkup("<a href=\"x\">y</a> <A HREF=x> <a href = 'x'> &lt;a href=x> <<a href=x>");
    seeds.WriteMarkup("a\nb\r\nc\td<!-- x --><!y><?z?> 3 < 4");
}

void WriteSheets(Seeds& seeds, std::ostream& dictionary) {
    seeds.Write("sheet", std::string(BuiltInStyleSheet()));
    for (const std::string& property : kProperties) {
        dictionary << "\"" << property << ":\"\n";
        std::string block;
        for (const std::string& value : kValues) {
            block += property + ":" + value + ";";
        }
        seeds.Write("sheet", "b, .c, a:link {" + block + "}/* x */ h1{}");
        seeds.WriteMarkup("<span class=c>x <b>y</b></span>", ".c{" + block + "}");
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
    Seeds seeds(folder);
    WriteTags(seeds, dictionary);
    WriteSheets(seeds, dictionary);
    for (const std::string& value : kValues) {
        seeds.Write("values", value);
    }
    for (int i = 0; i < kColourNameCount; ++i) {
        seeds.Write("values", std::string(ColourName(i)));
    }
    return 0;
}
