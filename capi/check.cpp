#include "capi/check.h"

#include "capi/messages.h"

#include <atomic>

namespace ZUNO::CInterface {

namespace {

std::atomic<bool> theWorldIsUsed = false;

} // namespace

WorldEntry::WorldEntry() {
    if (theWorldIsUsed.exchange(true))
        throw Failure{ZUNO_BUSY, "another call uses the world: this one comes from within a "
                                 "callback, or from a second thread"};
    Messages::begin();
}

WorldEntry::~WorldEntry() {
    theWorldIsUsed = false;
}

} // namespace ZUNO::CInterface
