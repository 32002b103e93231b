#pragma once

#include "common/exceptions/exception.h"

#include <string>

namespace ZUNO::HostKit {

/// The message and the named parameters of an exception in one line; deletes it.
std::string takeMessage(Common::Exceptions::Exception* exception);

} // namespace ZUNO::HostKit
