#pragma once

#include "capi/handles.h"
#include "hostkit/exports.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/meshfilecallback.h"

namespace ZUNO::CInterface {

using HostKit::Exports;

/// A running world, on the host's memory and files. One at a time.
///
/// Library and host share one foundation: it is started here, on the host's memory, and closed with
/// the world. So nothing made of the foundation's texts may be kept outside of a session.
class Session : public Object {
public:
    /// Throws a Failure, or what the exports throw, with nothing left running.
    Session(const zuno_settings& settings, const char* mesh);
    ~Session() override { close(); }

    /// Refuses what needs a process without a session.
    static void requireNone();

    Exports& exports() { return *mExports; }
    const Exports::Files& files() const { return mFiles; }
    void look(zuno_memory& figures) const;
    void close();

private:
    void start(const zuno_settings& settings, const char* mesh);
    void setFiles(const zuno_settings& settings);

    std::unique_ptr<Exports> mExports;
    Exports::Memory mMemory;
    Exports::Files mFiles;
    const HostKit::MeshFileCallback* mMeshFiles = nullptr;
    const HostKit::MemoryFigures* mFigures = nullptr; ///< of the memory callback
    HostKit::MemoryFigures mLastFigures;
    bool mIsStarted = false; ///< the world, or a part of it
    bool mIsOpen = false;
};

inline std::shared_ptr<Session> get(zuno_session* handle) {
    return get<Session>(handle, "the session");
}

} // namespace ZUNO::CInterface
