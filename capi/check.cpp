#include "capi/check.h"

#include "capi/messages.h"

#include <atomic>

namespace ZUNO::CInterface {

namespace {

std::atomic<bool> theWorldIsUsed = false;

} // namespace

void refuse(const std::string& text) {
    throw Failure{ZUNO_BAD_ARGUMENT, text};
}

void refuseNull(const char* name) {
    refuse(std::string(name) + " is null");
}

void checkSize(std::size_t given, std::size_t expected, const char* name) {
    if (given != expected)
        throw Failure{ZUNO_BAD_SIZE, std::string(name) + " has the size " + std::to_string(given) +
                                         " instead of " + std::to_string(expected)};
}

void refuseRoom(std::size_t room, std::size_t number) {
    throw Failure{ZUNO_TOO_SMALL, "the array has room for " + std::to_string(room) + " of " +
                                      std::to_string(number)};
}

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
