#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace ZUNO::Tools {

/// JSON on one line. Names in files may be any bytes; what is no UTF-8 becomes U+FFFD.
inline std::string lineOf(const nlohmann::ordered_json& json) {
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

} // namespace ZUNO::Tools
