#include "dialogs/pin/enter_pin_rules.h"

namespace mvp {

const char* WhyNoPicture(std::string_view path, bool bText, bool bFileThere) {
    if (!bText) {
        return "the value is not a text";
    }
    if (bFileThere) {
        return "the file is not a bitmap that can be shown";
    }
    if (path.find('"') != std::string_view::npos) {
        return "the path stands in quotation marks";
    }
    const std::size_t percent = path.find('%');
    if (percent != std::string_view::npos &&
        path.find('%', percent + 1) != std::string_view::npos) {
        return "variables in the path are not replaced, and there is no such file";
    }
    return "there is no such file";
}

}  // namespace mvp
