// The script reader of the command for people: any lines.
#include "tools/zunopath/surfacequery.h"

#include <cstdint>
#include <sstream>
#include <stdexcept>

using namespace ZUNO::Tools;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream script(std::string(reinterpret_cast<const char*>(data), size));
    int left = 8; // lines: each is read by itself, and most make an exception with its text
    for (std::string line; left != 0 && std::getline(script, line); --left) {
        const std::vector<std::string> words = splitLine(line);
        if (words.empty())
            continue;
        try {
            const AnyQuery any = parseAnyQuery(words);
            const Query* const query = std::get_if<Query>(&any);
            if (query != nullptr && (query->mFrom.size() > 3 || query->mTo.size() > 3))
                std::abort();
        } catch (const std::invalid_argument& error) {
            if (std::string(error.what()).find("expected") == std::string::npos)
                std::abort();
        }
    }
    return 0;
}
