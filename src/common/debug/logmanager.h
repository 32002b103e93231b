#pragma once

#include "common/container/array.h"
#include "common/debug/logdispatcher.h"
#include "common/debug/logreporter.h"
#include "common/memory/stlallocator.h"
#include "common/singleton.h"

#include <list>
#include <map>

namespace ZUNO::Common::Debug {

/// Knows the reporters by name and hands their messages to the dispatchers of each type.
/// It owns its reporters, not the dispatchers: whoever adds one removes and destroys it.
/// No locks; for the thread that calls the library.
class LogManager : public Singleton<LogManager> {
public:
    LogManager();
    ~LogManager() override;

    /// A new reporter, which stays the manager's; null when the name is taken.
    LogReporter* createReporter(const String& name);
    /// The reporter of that name, or null.
    LogReporter* getReporter(const String& name) const;
    /// Destroys the registered reporter of that reporter's name, if there is one.
    void removeReporter(LogReporter* reporter);

    /// Appends the dispatcher to the list of each type in the mask; with `replace` it is then the
    /// only one there.
    void addDispatcher(std::uint32_t typeMask, LogDispatcher* dispatcher, bool replace);
    void removeDispatcher(std::uint32_t typeMask, LogDispatcher* dispatcher);

    /// Hands a message to the dispatchers of each type bit that it carries, lowest bit first.
    void dispatch(LogReporter* reporter, const LogMessage& message);

    /// These change every registered reporter; the manager's own is none of them.
    void setLogMask(std::uint32_t mask);
    void enableLogTypes(std::uint32_t mask, bool on);
    void setBreakMask(std::uint32_t mask);
    void enableBreakTypes(std::uint32_t mask, bool on);

private:
    using DispatcherList = std::list<LogDispatcher*, Memory::STLAllocator<LogDispatcher*>>;
    using Registry = std::map<String, LogReporter*, std::less<String>,
                              Memory::STLAllocator<std::pair<const String, LogReporter*>>>;

    LogReporter* mOwnReporter;
    Registry mRegistry;
    Container::Array<DispatcherList, logTypeCount> mDispatchers;
};

} // namespace ZUNO::Common::Debug
