#include "pathfinder/hostground.h"

#include "common/callback/callbackallocator.h"
#include "common/callback/reportcallback.h"
#include "common/exceptions/exception.h"
#include "common/interface.h"
#include "common/platform/typeinformation.h"
#include "common/report/report.h"
#include "common/utility/immortal.h"

namespace ZUNO::Pathfinder {

using namespace Common;

namespace {

struct HostGround {
    bool mIsEntered = false;
    bool mStartedFoundation = false;
    SharedPtr<Callback::MemoryCallback> mMemory; ///< until the last report about it was made
    SharedPtr<Memory::Allocator> mAllocator;
    Callback::ReportCallback* mReports = nullptr; ///< the same object, or null
    Debug::ReportHandler mFormerHandler = nullptr;
};

constinit Utility::Immortal<HostGround> theGround;
constinit HostGround& g = theGround.mValue;

void tellHost(const char* text, const char* file, unsigned int line) {
    g.mReports->report(text, file, line);
}

void takeReports() {
    if (g.mMemory == nullptr || !Platform::hasTypeInformation(g.mMemory.get()))
        return;
    g.mReports = dynamic_cast<Callback::ReportCallback*>(g.mMemory.get());
    if (g.mReports != nullptr)
        g.mFormerHandler = Debug::setReportHandler(tellHost);
}

void returnReports() {
    if (g.mReports == nullptr)
        return;
    // a host that shares the foundation may have set a handler of its own meanwhile
    const Debug::ReportHandler current = Debug::setReportHandler(g.mFormerHandler);
    if (current != tellHost)
        Debug::setReportHandler(current);
    g.mReports = nullptr;
}

void startMemory() {
    g.mStartedFoundation = !Common::isLibraryRunning();
    if (g.mStartedFoundation)
        Common::initLibrary(g.mMemory);
    if (g.mStartedFoundation || g.mMemory == nullptr)
        g.mAllocator = Common::getAllocator();
    else
        g.mAllocator = SharedPtr<Memory::Allocator>(new (g.mMemory) Callback::CallbackAllocator());
    if (g.mAllocator == nullptr)
        Memory::throwOutOfMemory();
}

void release() {
    g.mAllocator = nullptr;
    if (g.mStartedFoundation)
        Common::closeLibrary();
    returnReports();
    g.mMemory = nullptr;
    g.mIsEntered = g.mStartedFoundation = false;
}

} // namespace

bool isOnHostGround() {
    return g.mIsEntered;
}

void enterHostGround(const SharedPtr<Callback::MemoryCallback>& cbMemory) {
    if (g.mIsEntered) {
        Common::initLibrary(cbMemory); // reports
        return;
    }
    g.mMemory = cbMemory;
    takeReports();
    try {
        startMemory();
        g.mIsEntered = true;
    } catch (...) {
        release();
        throw;
    }
}

const SharedPtr<Memory::Allocator>& getWorldAllocator() {
    return g.mAllocator;
}

void leaveHostGround() {
    release();
}

} // namespace ZUNO::Pathfinder
