#include "common/platform/assertion.h"

#include <cstdlib>

namespace ZUNO::Common::Platform {

void showAssertion(const char*, const char*, unsigned int) noexcept {}

void stopOnAssertion(const char*, const char*, unsigned int) noexcept {
    std::abort();
}

} // namespace ZUNO::Common::Platform
