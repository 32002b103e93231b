#include "hostkit/session.h"

#include "common/callback/reportcallback.h"
#include "hostkit/recorder.h"
#include "hostkit/systemfiles.h"

#include <stdexcept>

namespace ZUNO::HostKit {

using namespace Common;

namespace {

bool theSessionRuns = false;

Exports::Files filesOf(const SessionSettings& settings) {
    if (settings.mFiles != nullptr)
        return settings.mFiles;
    return systemFiles(NameEncoding::SYSTEM,
                       settings.mBaseFolder.empty() ? nullptr : settings.mBaseFolder.c_str());
}

/// Tells the host, in a heap that the library takes its memory from.
class ReportingHeap : public HeapMemoryCallback, public Callback::ReportCallback {
public:
    explicit ReportingHeap(decltype(SessionSettings::mOnReport) onReport)
        : mOnReport(std::move(onReport)) {}
    void report(const char* text, const char* file, unsigned int line) noexcept override {
        mOnReport(text, file, line);
    }

private:
    decltype(SessionSettings::mOnReport) mOnReport;
};

std::unique_ptr<Exports> exportsOf(const SessionSettings& settings) {
    return settings.mRecording.empty() ? std::make_unique<Exports>()
                                       : std::make_unique<Recorder>(settings.mRecording);
}

} // namespace

Session::Session(const std::string& meshFile, const SessionSettings& settings) {
    if (theSessionRuns)
        throw std::logic_error(meshFile + ": a session is running already, and a process has one "
                                          "world: close it first, or reload it");
    mExports = exportsOf(settings);
    auto* const heap = settings.mOnReport != nullptr ? new ReportingHeap(settings.mOnReport)
                                                     : new HeapMemoryCallback;
    mHeap = heap;
    mMemory = SharedPtr<Callback::MemoryCallback>(heap);
    auto* const meshFiles = new MeshFileCallback(filesOf(settings));
    mMeshFiles = meshFiles;
    mFiles = Exports::Files(meshFiles);
    theSessionRuns = mIsOpen = true;
    try {
        start(meshFile);
    } catch (...) {
        close();
        throw;
    }
}

void Session::start(const std::string& meshFile) {
    std::string name = meshFile;
    const std::uint64_t refused = mHeap->figures().mRefused;
    try {
        if (!mExports->initWorldRepresentation(meshFile.c_str(), mMemory, mFiles, ""))
            throw std::runtime_error(meshFile + (mHeap->figures().mRefused == refused
                                                     ? ": no usable navigation mesh"
                                                     : ": no memory for a world"));
    } catch (Exceptions::Exception* exception) {
        const std::string message = takeMessage(exception);
        throw std::runtime_error(mMeshFiles->failure().empty() ? message : mMeshFiles->failure());
    }
    mMeshFile.swap(name);
}

Session::~Session() {
    close();
}

void Session::reload(const std::string& meshFile, Scheduler* scheduler) {
    if (!mIsOpen)
        throw std::logic_error(meshFile + ": the session is closed");
    readMesh(meshFile, mFiles); // throws while nothing has changed yet
    mExports->close();
    if (scheduler != nullptr)
        scheduler->restart();
    try {
        start(meshFile);
    } catch (const std::exception& error) {
        mExports->close();
        startAgain(error);
        throw;
    }
}

/// Loads the former mesh once more, after the new one has failed.
void Session::startAgain(const std::exception& failure) {
    try {
        start(mMeshFile);
    } catch (const std::exception& second) {
        close();
        throw std::runtime_error(std::string(failure.what()) +
                                 "; and the old mesh is gone: " + second.what());
    }
}

const MemoryFigures& Session::memory() const {
    return mIsOpen ? mHeap->figures() : mLastFigures;
}

MemoryFigures Session::close() {
    if (!mIsOpen)
        return mLastFigures;
    theSessionRuns = mIsOpen = false;
    mExports->close();
    mLastFigures = mHeap->figures();
    mMemory = nullptr;
    mFiles = nullptr;
    return mLastFigures;
}

} // namespace ZUNO::HostKit
