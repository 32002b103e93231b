#pragma once

#include "common/basicstring.h"

namespace ZUNO::Common::Debug {

enum class MessageBoxButtons { OK = 0, OK_CANCEL = 1, YES_NO = 2, YES_NO_CANCEL = 3 };

enum class MessageBoxIcon { NONE = 0, WARNING = 1, ERROR = 2 };

enum class MessageBoxResult { OK = 0, YES = 1, NO = 2, CANCEL = 3 };

/// Shows a modal box without an owner and waits for the user's answer.
/// A button that has no result of its own is reported and counts as Cancel.
MessageBoxResult showMessageBox(const String& text, const String& caption,
                                MessageBoxButtons buttons, MessageBoxIcon icon);

/// The platform's style for a set of buttons and an icon.
unsigned int messageBoxStyle(MessageBoxButtons buttons, MessageBoxIcon icon);

/// The result for the platform's button number.
MessageBoxResult messageBoxResult(int button);

} // namespace ZUNO::Common::Debug
