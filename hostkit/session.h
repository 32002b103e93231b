#pragma once

#include "common/exceptions/exception.h"
#include "hostkit/foundation.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/stdiofilecallback.h"
#include "pathfinder/interface.h"

#include <string>

namespace ZUNO::HostKit {

/// A running library: starts the host's copy of the foundation and the world, and closes both in
/// the right order. One at a time in a process.
class Session {
public:
    /// Loads the mesh. `baseFolder`, when not empty, is the folder that file names can't leave.
    /// On any failure nothing runs and a std::runtime_error says why: an exception's report, or
    /// that the file holds no usable mesh (what is wrong with it was reported before).
    explicit Session(const std::string& meshFile, const std::string& baseFolder = {});
    /// The same with the host's own files.
    Session(const std::string& meshFile,
            const Common::SharedPtr<Common::Callback::FileIOCallback>& fileIO);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The library's memory so far.
    const MemoryFigures& memory() const;

    /// Closes the world and returns the library's memory after that: with everything given back
    /// its blocks and bytes are 0. A session that is closed closes no more.
    MemoryFigures close();

private:
    void start(const std::string& meshFile,
               const Common::SharedPtr<Common::Callback::FileIOCallback>& fileIO);

    Foundation mFoundation; ///< outlives all that is made of strings and pointers here
    Common::SharedPtr<Common::Callback::MemoryCallback> mMemory;
    const HeapMemoryCallback* mHeap = nullptr;
    MemoryFigures mLastFigures;
    bool mIsOpen = false;
};

/// The message and the named parameters of an exception in one line; deletes it.
std::string takeMessage(Common::Exceptions::Exception* exception);

} // namespace ZUNO::HostKit
