#include "common/platform/stackwalker.h"

namespace ZUNO::Common::Platform {

/// A page's code can't see its callers.
void walkStack(StackVisitor&) {}

} // namespace ZUNO::Common::Platform
