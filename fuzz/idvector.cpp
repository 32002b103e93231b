// The id vector as sequences of operations against a map and a stack of free ids.
#include "common/container/idvector.h"
#include "fuzz/ground.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <map>

using namespace ZUNO;

namespace {

/// An element that owns memory, so that a lost or doubled one is noticed.
struct Element {
    explicit Element(int value) : mValue(new int(value)) {}
    Element(const Element& other) : mValue(new int(*other.mValue)) {}
    Element& operator=(const Element&) = delete;
    ~Element() { delete mValue; }

    int* mValue;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    FuzzedDataProvider input(data, size);
    Common::Container::IDVector<Element> vector(Common::gObjectAllocator);
    std::map<std::uint32_t, int> model;
    std::vector<std::uint32_t> freed; // the latest is handed out first
    while (input.remaining_bytes() != 0) {
        const auto id = input.ConsumeIntegralInRange<std::uint32_t>(0, 40);
        switch (input.ConsumeIntegralInRange(0, 8)) {
        case 0:
        case 1:
        case 2:
        case 3: {
            const int value = input.ConsumeIntegral<int>();
            const std::uint32_t given = vector.insert(Element(value));
            Fuzz::require(!model.contains(given), "a new id was free");
            if (!freed.empty()) {
                Fuzz::require(given == freed.back(), "the latest freed id comes first");
                freed.pop_back();
            }
            model[given] = value;
            break;
        }
        case 4:
        case 5:
        case 6:
            vector.remove(id); // an invalid one is reported
            if (model.erase(id) != 0)
                freed.push_back(id);
            break;
        case 7:
            vector.clear();
            model.clear();
            freed.clear();
            break;
        default:
            Fuzz::require(vector.isValidID(id) == model.contains(id), "valid ids");
            Fuzz::require((vector.find(id) != nullptr) == model.contains(id), "found ids");
        }
        Fuzz::require(vector.size() == model.size(), "sizes are equal");
        auto expected = model.begin();
        for (auto place = vector.begin(); place != vector.end(); ++place, ++expected)
            Fuzz::require(expected != model.end() && place.getID() == expected->first &&
                              *(*place).mValue == expected->second,
                          "elements are equal, in the order of their ids");
        Fuzz::require(expected == model.end(), "no element is missing");
    }
    return 0;
}
