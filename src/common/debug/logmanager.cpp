#include "common/debug/logmanager.h"

#include "common/memory/objectcreation.h"

#include <tuple>
#include <utility>

namespace ZUNO::Common::Debug {

LogManager::LogManager()
    : mOwnReporter(Memory::createObject<LogReporter>(mAllocator, "LogManager", this)),
      mRegistry(mAllocator), mDispatchers{{DispatcherList(mAllocator), DispatcherList(mAllocator),
                                           DispatcherList(mAllocator), DispatcherList(mAllocator),
                                           DispatcherList(mAllocator)}} {}

LogManager::~LogManager() {
    for (const auto& [name, reporter] : mRegistry)
        Memory::destroyObject(mAllocator, reporter);
    Memory::destroyObject(mAllocator, mOwnReporter);
}

LogReporter* LogManager::createReporter(const String& name) {
    // The key is made with the manager's allocator: a plain copy would draw from the strings'.
    const auto [place, isNew] =
        mRegistry.emplace(std::piecewise_construct, std::forward_as_tuple(name, mAllocator),
                          std::forward_as_tuple(nullptr));
    if (!isNew)
        return nullptr;
    try {
        place->second = Memory::createObject<LogReporter>(mAllocator, name, this);
    } catch (...) {
        mRegistry.erase(place);
        throw;
    }
    return place->second;
}

LogReporter* LogManager::getReporter(const String& name) const {
    const auto place = mRegistry.find(name);
    return place != mRegistry.end() ? place->second : nullptr;
}

void LogManager::removeReporter(LogReporter* reporter) {
    if (reporter == nullptr)
        return;
    const auto place = mRegistry.find(reporter->getName());
    if (place == mRegistry.end())
        return;
    LogReporter* const registered = place->second;
    mRegistry.erase(place);
    Memory::destroyObject(mAllocator, registered);
}

void LogManager::addDispatcher(std::uint32_t typeMask, LogDispatcher* dispatcher, bool replace) {
    for (unsigned int bit = 0; bit < logTypeCount; ++bit) {
        if ((typeMask & (1U << bit)) == 0)
            continue;
        if (replace)
            mDispatchers[bit].clear();
        mDispatchers[bit].push_back(dispatcher);
    }
}

void LogManager::removeDispatcher(std::uint32_t typeMask, LogDispatcher* dispatcher) {
    for (unsigned int bit = 0; bit < logTypeCount; ++bit)
        if ((typeMask & (1U << bit)) != 0)
            mDispatchers[bit].remove(dispatcher);
}

void LogManager::dispatch(LogReporter*, const LogMessage& message) {
    for (unsigned int bit = 0; bit < logTypeCount; ++bit)
        if ((message.mType & (1U << bit)) != 0)
            for (LogDispatcher* const dispatcher : mDispatchers[bit])
                dispatcher->dispatch(message);
}

void LogManager::setLogMask(std::uint32_t mask) {
    for (const auto& [name, reporter] : mRegistry)
        reporter->setLogMask(mask);
}

void LogManager::enableLogTypes(std::uint32_t mask, bool on) {
    for (const auto& [name, reporter] : mRegistry)
        reporter->enableLogTypes(mask, on);
}

void LogManager::setBreakMask(std::uint32_t mask) {
    for (const auto& [name, reporter] : mRegistry)
        reporter->setBreakMask(mask);
}

void LogManager::enableBreakTypes(std::uint32_t mask, bool on) {
    for (const auto& [name, reporter] : mRegistry)
        reporter->enableBreakTypes(mask, on);
}

} // namespace ZUNO::Common::Debug
