#include "host/process/screen.h"

#include <langinfo.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <clocale>
#include <string_view>

#include "host/process/colour.h"

namespace zorv {
namespace {
constexpr size_t NARROWEST = 80;
constexpr size_t WIDEST = 160;  // a longer line is hard to follow

// As the environment has it: the program's own locale may be another, or none.
bool HasUtf8() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) {  // one that is not installed
        return false;
    }
    const bool isUtf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
    freelocale(locale);
    return isUtf8;
}

size_t WidthOf(int descriptor) {
    winsize size{};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? std::clamp<size_t>(size.ws_col, NARROWEST, WIDEST)
                                                     : NARROWEST;
}
}  // namespace

ScreenStyle StyleOf(int descriptor) {
    return {WidthOf(descriptor), HasUtf8(), WantsColour(descriptor)};
}
}  // namespace zorv
