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
#include "richtext/style/colour_table.h"
#include "richtext/style/style_sheet.h"

namespace {

using namespace mvp::richtext;

constexpr const char* kValues[] = {"10",
                                   "10px",
                                   "2em",
                                   "3ex",
                                   "1in",
                                   "2cm",
                                   "15mm",
                                   "12pt",
                                   "1pc",
                                   "50%",
                                   "-2pt",
                                   "+3",
                                   "0x10",
                                   "010",
                                   "0",
                                   "-1",
                                   "99999999",
                                   "#FF9900",
                                   "#F00",
                                   "red",
                                   "left",
                                   "center",
                                   "right",
                                   "top",
                                   "middle",
                                   "vcenter",
                                   "bottom",
                                   "solid",
                                   "none",
                                   "thick",
                                   "3hgradient",
                                   "metal",
                                   "transparent",
                                   "italic",
                                   "bold",
                                   "underline, overline",
                                   "Verdana, Arial",
                                   "file.bmp"};

constexpr const char* kProperties[] = {"font-size",      "font-family",      "font-style",
                                       "font-weight",    "text-align",       "text-transform",
                                       "color",          "background-color", "text-decoration",
                                       "vertical-align", "border-color",     "border-width",
                                       "size",           "border-style",     "margin",
                                       "padding"};

class CSeeds {
public:
    explicit CSeeds(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    void Write(const char* pszTarget, const std::string& strSeed) {
        const std::filesystem::path folder = m_folder / pszTarget;
        std::filesystem::create_directories(folder);
        char aName[16];
        std::snprintf(aName, sizeof(aName), "%04d", m_nNext++);
        std::ofstream(folder / aName, std::ios::binary) << strSeed;
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

std::string Tagged(std::string_view tag, const std::string& strAttributes) {
    return std::string("x <")
        .append(tag)
        .append(strAttributes)
        .append(">some well-known words</")
        .append(tag)
        .append("> y");
}

void WriteTags(CSeeds& seeds) {
    const std::string strTable =
        "<table border=1><tr><td>a b</td><td colspan=2 rowspan=2>c</td></tr>";
    std::size_t nValue = 0;
    for (int i = 0; i < kTagCount; ++i) {
        const std::string_view tag = InfoOf(static_cast<TagId>(i)).name;
        seeds.WriteMarkup(Tagged(tag, "") + Tagged(tag, " class=\"c\""),
                          ".c{padding:2px;color:red}");
        for (int j = 0; j < kAttributeCount; j += 3) {
            std::string strAttributes;
            for (int k = j; k < j + 3 && k < kAttributeCount; ++k) {
                strAttributes.append(" ").append(NameOf(static_cast<AttributeId>(k)));
                strAttributes.append("=\"").append(kValues[nValue++ % std::size(kValues)]);
                strAttributes.append("\"");
            }
            seeds.WriteMarkup(Tagged(tag, strAttributes));
        }
        seeds.WriteMarkup(strTable + "<tr><td>" + Tagged(tag, "") + "</table>");
    }
    std::string strEntities;
    for (int i = 0; i < kEntityCount; ++i) {
        strEntities.append(EntityAt(i).name).append(" ");
    }
    seeds.WriteMarkup(strEntities);
    seeds.WriteMarkup("<a href=\"x\">y</a> <A HREF=x> <a href = 'x'> &lt;a href=x> <<a href=x>");
    seeds.WriteMarkup("a\nb\r\nc\td<!-- x --><!y><?z?> 3 < 4");
}

void WriteSheets(CSeeds& seeds) {
    seeds.Write("sheet", std::string(BuiltInStyleSheet()));
    for (const char* pszProperty : kProperties) {
        std::string strBlock;
        for (const char* pszValue : kValues) {
            strBlock.append(pszProperty).append(":").append(pszValue).append(";");
        }
        seeds.Write("sheet", "b, .c, a:link {" + strBlock + "}/* x */ h1{}");
        seeds.WriteMarkup("<span class=c>x <b>y</b></span>", ".c{" + strBlock + "}");
    }
}

void WriteDictionary(const std::filesystem::path& path) {
    std::ofstream file(path);
    for (int i = 0; i < kTagCount; ++i) {
        file << "\"<" << InfoOf(static_cast<TagId>(i)).name << ">\"\n";
        file << "\"</" << InfoOf(static_cast<TagId>(i)).name << ">\"\n";
    }
    for (int i = 0; i < kAttributeCount; ++i) {
        file << "\" " << NameOf(static_cast<AttributeId>(i)) << "=\"\n";
    }
    for (const char* pszProperty : kProperties) {
        file << "\"" << pszProperty << ":\"\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make_richtext_seeds FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    CSeeds seeds(folder);
    WriteTags(seeds);
    WriteSheets(seeds);
    for (const char* pszValue : kValues) {
        seeds.Write("values", pszValue);
    }
    for (int i = 0; i < kColourNameCount; ++i) {
        seeds.Write("values", std::string(ColourName(i)));
    }
    WriteDictionary(folder / "richtext.dict");
    return 0;
}
