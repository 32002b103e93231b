#pragma once

#include "hostkit/exceptiontext.h"
#include "hostkit/exports.h"
#include "hostkit/foundation.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/meshfilecallback.h"
#include "hostkit/scheduler.h"
#include "hostkit/stdiofilecallback.h"

#include <functional>
#include <memory>
#include <string>

namespace ZUNO::HostKit {

/// What a session may be told when it starts.
struct SessionSettings {
    /// The folder that file names can't leave, when it is not empty and there are no files of the
    /// host's own.
    std::string mBaseFolder = {};
    /// The host's own files; null: the C library's.
    Exports::Files mFiles = {};
    /// The file that every call through `Session::exports` is recorded in (see `recorder.h`); an
    /// existing one is overwritten. Empty: none.
    std::string mRecording = {};
    /// Gets each report of the library's ("expression\nError Message: what is wrong", the source
    /// file, the line) until the session is closed; empty: reports go to standard error. It must
    /// neither throw nor call the library.
    std::function<void(const char* text, const char* file, unsigned int line)> mOnReport = {};
};

/// A running library: starts the host's copy of the foundation and the world, and closes both in
/// the right order. A mesh may have either form. One at a time in a process.
/// Thread: that of the exports.
class Session {
public:
    /// Loads the mesh.
    /// Throws a std::logic_error while another session runs, which goes on as it was. On any other
    /// failure nothing runs and a std::runtime_error says why: an exception's report, or that the
    /// file holds no usable mesh (what is wrong with it was reported before).
    Session(const std::string& meshFile, const SessionSettings& settings);
    explicit Session(const std::string& meshFile, const std::string& baseFolder = {})
        : Session(meshFile, SessionSettings{.mBaseFolder = baseFolder}) {}
    Session(const std::string& meshFile, const Exports::Files& fileIO)
        : Session(meshFile, SessionSettings{.mFiles = fileIO}) {}
    /// Closes what was not closed.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The library's exports; recorded, when the session was told so. Lifetime: the session's.
    Exports& exports() { return *mExports; }

    /// Runs a new mesh in the old one's place. The new one is read and looked over first: when it
    /// can't be run, a std::runtime_error says why, and the old world and its searches go on as
    /// they were. Else the old world is closed with all its searches; those of the scheduler, which
    /// a host that has one must name, are asked anew by their points.
    /// When memory ends in the middle, the old file is loaded again; when that fails too, the
    /// session is closed. Either way a std::runtime_error says so. Throws a std::logic_error when
    /// the session was closed before.
    /// Cost: reads the mesh twice; both worlds are not held at a time.
    void reload(const std::string& meshFile, Scheduler* scheduler = nullptr);

    /// The library's memory so far; of a closed session what `close` returned.
    const MemoryFigures& memory() const;

    /// Closes the world, with searches that are open, and returns the library's memory after that:
    /// with everything given back its blocks and bytes are 0. A second call returns the same.
    MemoryFigures close();

private:
    void start(const std::string& meshFile);
    void startAgain(const std::exception& failure);

    Foundation mFoundation; ///< outlives all that is made of strings and pointers here
    std::unique_ptr<Exports> mExports;
    std::string mMeshFile;
    Common::SharedPtr<Common::Callback::MemoryCallback> mMemory;
    const HeapMemoryCallback* mHeap = nullptr;
    Exports::Files mFiles;
    const MeshFileCallback* mMeshFiles = nullptr;
    MemoryFigures mLastFigures;
    bool mIsOpen = false;
};

} // namespace ZUNO::HostKit
