#include "common/platform/messagebox.h"

namespace ZUNO::Common::Platform {

/// Nobody can be asked from within a call: the box is closed as soon as it is there.
int showMessageBox(const char*, const char*, unsigned int style) {
    return (style & 0xFU) == BOX_OK ? BUTTON_OK : BUTTON_CANCEL;
}

} // namespace ZUNO::Common::Platform
