#pragma once

#include <string>
#include <string_view>

namespace ZUNO::Tools {

/// Any bytes as the text of an XML element in UTF-8. What an XML document can't hold (bytes that
/// are no UTF-8, control characters) becomes U+FFFD.
std::string xmlTextOf(std::string_view bytes);

} // namespace ZUNO::Tools
