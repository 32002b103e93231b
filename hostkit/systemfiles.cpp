#include "hostkit/systemfiles.h"

#include "hostkit/stdiofilecallback.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace ZUNO::HostKit {

MeshFiles systemFiles(NameEncoding encoding, const char* baseFolder) {
    return MeshFiles(baseFolder == nullptr
                         ? new StdioFileCallback(encoding)
                         : new StdioFileCallback(pathOf(baseFolder, encoding), encoding));
}

std::string readSystemFile(const std::string& name, NameEncoding encoding) {
    std::ifstream in(pathOf(name, encoding), std::ios::binary);
    std::ostringstream content;
    if (!(content << in.rdbuf()))
        throw std::runtime_error(name + ": cannot be read");
    return content.str();
}

} // namespace ZUNO::HostKit
