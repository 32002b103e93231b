#include "hostkit/foundation.h"

#include "common/interface.h"

namespace ZUNO::HostKit {

namespace {

unsigned int theCount = 0;
bool theKitStarted = false; ///< and not the host before it

} // namespace

Foundation::Foundation() {
    if (theCount == 0) {
        theKitStarted = !Common::isLibraryRunning();
        if (theKitStarted)
            Common::initLibrary({});
    }
    ++theCount;
}

Foundation::~Foundation() {
    if (--theCount == 0 && theKitStarted)
        Common::closeLibrary();
}

} // namespace ZUNO::HostKit
