// Strings as sequences of operations against the standard library's.
#include "fuzz/ground.h"
#include "reference/stringmodel.h"

using namespace ZUNO;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    Fuzz::Choices choices(data, size);
    const char* const difference = Reference::StringModel().compare(choices);
    Fuzz::require(difference == nullptr, difference);
    return 0;
}
