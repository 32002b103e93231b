// Strings as sequences of operations against the standard library's.
#include "common/basicstring.h"
#include "fuzz/ground.h"

#include <algorithm>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>
#include <vector>

using namespace ZUNO;

namespace {

/// A text as both see it: up to its first zero.
std::string textFrom(FuzzedDataProvider& input) {
    const std::string bytes = input.ConsumeRandomLengthString(64);
    return bytes.c_str();
}

bool isSmaller(const std::string& a, const std::string& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<signed char>(x) < static_cast<signed char>(y);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    FuzzedDataProvider input(data, size);
    constexpr std::size_t count = 4;
    std::vector<Common::String> strings(count);
    std::vector<std::string> model(count);
    while (input.remaining_bytes() != 0) {
        const std::size_t a = input.ConsumeIntegralInRange<std::size_t>(0, count - 1);
        const std::size_t b = input.ConsumeIntegralInRange<std::size_t>(0, count - 1);
        switch (input.ConsumeIntegralInRange(0, 7)) {
        case 0:
            model[a] = textFrom(input);
            strings[a] = model[a].c_str();
            break;
        case 1:
            if (model[a].size() + model[b].size() > 4096)
                break;
            model[a] += model[b];
            strings[a] += strings[b];
            break;
        case 2: {
            const int number = input.ConsumeIntegral<int>();
            model[a] = std::to_string(number);
            strings[a] = Common::String(number);
            break;
        }
        case 3:
            model[a] = model[b];
            strings[a] = strings[b];
            break;
        case 4:
            model[a].clear();
            strings[a].clear();
            break;
        case 5:
            for (char& c : model[a])
                c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
            strings[a] = strings[a].toLower();
            break;
        case 6:
            if (model[a].size() + model[b].size() <= 4096) {
                const std::string sum = model[a] + model[b];
                const Common::String both = strings[a] + strings[b];
                Fuzz::require(sum == both.getConstCharPtr(), "sums are equal");
            }
            break;
        default:
            Fuzz::require((strings[a] == strings[b]) == (model[a] == model[b]), "equality");
            Fuzz::require((strings[a] < strings[b]) == isSmaller(model[a], model[b]), "order");
        }
        Fuzz::require(model[a] == strings[a].getConstCharPtr(), "texts are equal");
        Fuzz::require(model[a].size() == strings[a].getLength(), "lengths are equal");
    }
    return 0;
}
