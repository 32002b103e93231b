#include "common/platform/messagebox.h"

#include "common/platform/win32/windows.h"

namespace ZUNO::Common::Platform {

int showMessageBox(const char* text, const char* caption, unsigned int style) {
    static_assert(BOX_OK == MB_OK && BOX_OK_CANCEL == MB_OKCANCEL && BOX_YES_NO == MB_YESNO &&
                  BOX_YES_NO_CANCEL == MB_YESNOCANCEL && BOX_ICON_HAND == MB_ICONHAND &&
                  BOX_ICON_EXCLAMATION == MB_ICONEXCLAMATION);
    static_assert(BUTTON_OK == IDOK && BUTTON_CANCEL == IDCANCEL && BUTTON_YES == IDYES &&
                  BUTTON_NO == IDNO);
    return MessageBoxA(nullptr, text, caption, style);
}

} // namespace ZUNO::Common::Platform
