#include "hostkit/foundation.h"

#include "common/interface.h"

namespace ZUNO::HostKit {

namespace {

unsigned int theCount = 0;

} // namespace

Foundation::Foundation() {
    if (theCount == 0)
        Common::initLibrary({});
    ++theCount;
}

Foundation::~Foundation() {
    if (--theCount == 0)
        Common::closeLibrary();
}

} // namespace ZUNO::HostKit
