#pragma once

namespace ZUNO::Common::Platform {

/// Styles of a message box, by the numbers of the Win32 call.
enum MessageBoxStyle : unsigned int {
    BOX_OK = 0x0,
    BOX_OK_CANCEL = 0x1,
    BOX_YES_NO_CANCEL = 0x3,
    BOX_YES_NO = 0x4,
    BOX_ICON_HAND = 0x10,
    BOX_ICON_EXCLAMATION = 0x30
};

/// Buttons that end a message box, by the numbers of the Win32 call.
enum MessageBoxButton : int { BUTTON_OK = 1, BUTTON_CANCEL = 2, BUTTON_YES = 6, BUTTON_NO = 7 };

/// Shows a modal box without an owner window and returns the button that ended it.
/// Without a window system it is a prompt on the terminal. When standard input is no terminal,
/// the text goes to standard error and the answer is that of a box that was closed: OK when OK is
/// the only button, else Cancel.
int showMessageBox(const char* text, const char* caption, unsigned int style);

} // namespace ZUNO::Common::Platform
