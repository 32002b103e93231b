// The id vector as sequences of operations against its model.
#include "fuzz/ground.h"
#include "reference/idvectormodel.h"

using namespace ZUNO;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    Fuzz::Choices choices(data, size);
    const char* const difference =
        Reference::IDVectorModel(Common::gObjectAllocator).compare(choices);
    Fuzz::require(difference == nullptr, difference);
    return 0;
}
