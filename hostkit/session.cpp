#include "hostkit/session.h"

#include <stdexcept>

namespace ZUNO::HostKit {

using namespace Common;

Session::Session(const std::string& meshFile, const std::string& baseFolder)
    : Session(meshFile,
              SharedPtr<Callback::FileIOCallback>(
                  baseFolder.empty() ? new StdioFileCallback : new StdioFileCallback(baseFolder))) {
}

Session::Session(const std::string& meshFile, const SharedPtr<Callback::FileIOCallback>& fileIO) {
    auto* const heap = new HeapMemoryCallback;
    mHeap = heap;
    mMemory = SharedPtr<Callback::MemoryCallback>(heap);
    mIsOpen = true;
    try {
        start(meshFile, fileIO);
    } catch (Exceptions::Exception* exception) {
        const std::string message = takeMessage(exception);
        close();
        throw std::runtime_error(message);
    } catch (...) {
        close();
        throw;
    }
}

void Session::start(const std::string& meshFile,
                    const SharedPtr<Callback::FileIOCallback>& fileIO) {
    if (!Pathfinder::Interface::initWorldRepresentation(meshFile.c_str(), mMemory, fileIO, ""))
        throw std::runtime_error(meshFile + ": no usable navigation mesh");
}

Session::~Session() {
    close();
}

const MemoryFigures& Session::memory() const {
    return mIsOpen ? mHeap->figures() : mLastFigures;
}

MemoryFigures Session::close() {
    if (!mIsOpen)
        return mLastFigures;
    mIsOpen = false;
    Pathfinder::Interface::close();
    mLastFigures = mHeap->figures();
    mMemory = nullptr;
    return mLastFigures;
}

std::string takeMessage(Exceptions::Exception* exception) {
    std::string text = exception->getMessage().getConstCharPtr();
    {
        Exceptions::ParameterList parameters;
        exception->getParameters(parameters);
        const char* separator = " (";
        for (const Exceptions::Parameter& parameter : parameters) {
            text += separator;
            text += parameter.mFirst.getConstCharPtr();
            text += ": ";
            text += parameter.mSecond.getConstCharPtr();
            separator = ", ";
        }
        if (!parameters.empty())
            text += ")";
    }
    delete exception;
    return text;
}

} // namespace ZUNO::HostKit
