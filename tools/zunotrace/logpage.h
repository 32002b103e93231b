#pragma once

namespace ZUNO::Tools {

/// The page that shows the log: log.html, put into the program when it is built.
extern const char* const logPage;

} // namespace ZUNO::Tools
