// Sends each line that it reads on the trace channel; "error " before one makes it an error, and
// "value NAME NUMBER" a value.
#include "common/debug/trace.h"
#include "common/interface.h"

#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>

int main() {
    using ZUNO::Common::Debug::Trace;
    ZUNO::Common::initLibrary({});
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string kind;
        std::string name;
        std::int32_t number = 0;
        words >> kind;
        if (kind == "error")
            Trace::send(ZUNO::Common::Debug::TRACE_ERROR, line.substr(kind.size() + 1).c_str());
        else if (kind == "value" && words >> name >> number)
            Trace::sendValue(1, name.c_str(), 0, reinterpret_cast<const char*>(&number));
        else
            Trace::send(ZUNO::Common::Debug::TRACE_MESSAGE, line.c_str());
    }
    ZUNO::Common::closeLibrary();
}
