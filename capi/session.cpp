#include "capi/session.h"

#include "capi/callbacks.h"
#include "capi/messages.h"
#include "common/interface.h"
#include "hostkit/recorder.h"
#include "hostkit/systemfiles.h"

namespace ZUNO::CInterface {

using namespace Common;

namespace {

bool theSessionRuns = false;

constexpr auto utf8 = HostKit::NameEncoding::UTF8;

} // namespace

void Session::requireNone() {
    if (theSessionRuns)
        throw Failure{ZUNO_BUSY,
                      "a session is running, and a process has one world: close it first"};
}

Session::Session(const zuno_settings& settings, const char* mesh) {
    requireNone();
    if (settings.memory != nullptr) {
        need(settings.memory->allocate, "memory.allocate");
        need(settings.memory->free, "memory.free");
        auto* const memory = new HostMemory(*settings.memory);
        mMemory = Exports::Memory(memory);
        mFigures = &memory->figures();
    } else {
        auto* const memory = new HostKit::HeapMemoryCallback;
        mMemory = Exports::Memory(memory);
        mFigures = &memory->figures();
    }
    setFiles(settings);
    theSessionRuns = mIsOpen = true;
    try {
        start(settings, mesh);
    } catch (...) {
        Failure failure = currentFailure(); // the exception goes before its memory does
        close();
        throw Failure(std::move(failure));
    }
}

void Session::setFiles(const zuno_settings& settings) {
    Exports::Files files;
    if (settings.files != nullptr) {
        need(settings.files->length, "files.length");
        need(settings.files->read, "files.read");
        files = Exports::Files(new HostFiles(*settings.files));
    } else {
        files = HostKit::systemFiles(utf8, settings.base_folder);
    }
    auto* const meshFiles = new HostKit::MeshFileCallback(files);
    mMeshFiles = meshFiles;
    mFiles = Exports::Files(meshFiles);
}

void Session::start(const zuno_settings& settings, const char* mesh) {
    initLibrary(mMemory);
    Messages::takeLog();
    try {
        mExports = settings.recording != nullptr
                       ? std::make_unique<HostKit::Recorder>(settings.recording, utf8)
                       : std::make_unique<Exports>();
    } catch (const std::runtime_error& error) {
        throw Failure{ZUNO_BAD_FILE, error.what()};
    }
    const Messages::SharedStart shared;
    mIsStarted = true;
    bool isLoaded = false;
    try {
        isLoaded = mExports->initWorldRepresentation(mesh, mMemory, mFiles, "");
    } catch (...) {
        Failure failure = currentFailure();
        if (!mMeshFiles->failure().empty())
            failure = {ZUNO_BAD_MESH, mMeshFiles->failure()};
        throw failure;
    }
    // what was asked for and is neither held nor given back was refused
    const bool wasRefused = mFigures->mAllocations - mFigures->mFrees > mFigures->mBlocks;
    if (!isLoaded)
        throw Failure{wasRefused ? ZUNO_NO_MEMORY : ZUNO_BAD_MESH,
                      std::string(mesh) +
                          ": no usable navigation mesh: " + Messages::firstReport()};
}

void Session::look(zuno_memory& figures) const {
    const HostKit::MemoryFigures& now = mIsOpen ? *mFigures : mLastFigures;
    const auto* const recorder = dynamic_cast<const HostKit::Recorder*>(mExports.get());
    figures.is_recording = recorder != nullptr && recorder->isRecording() ? 1 : 0;
    figures.allocations = now.mAllocations;
    figures.frees = now.mFrees;
    figures.blocks = now.mBlocks;
    figures.bytes = now.mBytes;
    figures.peak_bytes = now.mPeakBytes;
}

void Session::close() {
    if (!mIsOpen)
        return;
    theSessionRuns = mIsOpen = false;
    if (mIsStarted)
        mExports->close();
    mExports = nullptr;
    if (isLibraryRunning())
        closeLibrary();
    mLastFigures = *mFigures;
    mFiles = nullptr;
    mMemory = nullptr;
}

} // namespace ZUNO::CInterface

using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_start(const zuno_settings* settings, const char* mesh,
                                  zuno_session** session) {
    return inWorld(__func__, [&] {
        zuno_settings chosen{};
        if (settings != nullptr) {
            checkStruct(settings, "settings");
            chosen = *settings;
        }
        need(mesh, "the mesh's name");
        return make<Session>(session, chosen, mesh);
    });
}

extern "C" zuno_status zuno_close(zuno_session* session, zuno_memory* left) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Session> running = get(session);
        if (left != nullptr)
            checkStruct(left, "the memory figures");
        Handles::closeThoseOfSession();
        Handles::close(session);
        running->close();
        if (left != nullptr)
            running->look(*left);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_memory_figures(zuno_session* session, zuno_memory* figures) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Session> running = get(session);
        checkStruct(figures, "the memory figures");
        running->look(*figures);
        return ZUNO_OK;
    });
}
