// What the Windows Installer knows of the installed product, for the about box. What cannot be had
// is told by the log and leaves a text as it stood.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "about/installer.h"

namespace mvp {

struct ProductInformation {
    std::string strName;
    // The internal version of the last patch that has one, else of the product's own package, else
    // the version it was registered with.
    std::string strVersion;
};

// Asks for the product with code `pszProductCode`. Both texts are empty for an unknown product.
ProductInformation ReadProductInformation(const Installer& installer, const char* pszProductCode);

// What a database is asked for: the "Value" of the first row of a table whose column has a value.
// The names come from this program, never from outside: they are put into the statement as they
// stand.
struct DatabaseQuestion {
    const char* pszTable;
    const char* pszColumn;
    const char* pszWanted;
};

// The answer of the installer database, or of the patch, at `strPath`; none when it cannot be had.
std::optional<std::string> QueryDatabase(const Installer& installer,
                                         const DatabaseQuestion& question,
                                         const std::string& strPath);

// Whether a path is a patch's. The installer's own names for the packages it keeps are in small
// letters, and no others count.
constexpr bool IsPatchPath(std::string_view path) noexcept {
    return path.ends_with(".msp");
}

}  // namespace mvp
