#include "common/debug/xmessagebox.h"

#include "common/platform/messagebox.h"
#include "common/report/report.h"

namespace ZUNO::Common::Debug {

unsigned int messageBoxStyle(MessageBoxButtons buttons, MessageBoxIcon icon) {
    constexpr unsigned int buttonStyles[] = {Platform::BOX_OK, Platform::BOX_OK_CANCEL,
                                             Platform::BOX_YES_NO, Platform::BOX_YES_NO_CANCEL};
    constexpr unsigned int iconStyles[] = {0, Platform::BOX_ICON_EXCLAMATION,
                                           Platform::BOX_ICON_HAND};
    return buttonStyles[static_cast<unsigned int>(buttons)] |
           iconStyles[static_cast<unsigned int>(icon)];
}

MessageBoxResult messageBoxResult(int button) {
    switch (button) {
    case Platform::BUTTON_OK:
        return MessageBoxResult::OK;
    case Platform::BUTTON_YES:
        return MessageBoxResult::YES;
    case Platform::BUTTON_NO:
        return MessageBoxResult::NO;
    case Platform::BUTTON_CANCEL:
        return MessageBoxResult::CANCEL;
    default:
        ZUNO_REPORT("", "Some buttons have been defined, which have no assigned returnvalue");
        return MessageBoxResult::CANCEL;
    }
}

MessageBoxResult showMessageBox(const String& text, const String& caption,
                                MessageBoxButtons buttons, MessageBoxIcon icon) {
    return messageBoxResult(Platform::showMessageBox(
        text.getConstCharPtr(), caption.getConstCharPtr(), messageBoxStyle(buttons, icon)));
}

} // namespace ZUNO::Common::Debug
