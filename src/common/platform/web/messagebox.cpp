#include "common/platform/messagebox.h"

#include <cstdio>

namespace ZUNO::Common::Platform {

/// Nobody can be asked from within a call: the box is closed as soon as it is there.
int showMessageBox(const char* text, const char* caption, unsigned int style) {
    std::fprintf(stderr, "%s: %s\n", caption, text);
    return (style & 0xFU) == BOX_OK ? BUTTON_OK : BUTTON_CANCEL;
}

} // namespace ZUNO::Common::Platform
