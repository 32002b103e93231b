#pragma once

#include "common/basicstring.h"
#include "common/exceptions/callstack.h"
#include "common/exceptions/pair.h"
#include "common/memory/stlallocator.h"

#include <cstddef>
#include <list>
#include <new>

namespace ZUNO::Common::Exceptions {

/// Named values that belong to an exception, in the order in which they were added.
using Parameter = Container::Pair<String, String>;
using ParameterList = std::list<Parameter, Memory::STLAllocator<Parameter>>;

/// Root of all exceptions. They are thrown as pointers (`throw new X(...)`); whoever catches one
/// owns it and deletes it.
///
/// Storage and message come from the object allocator, and when that has nothing to give from the
/// process heap, or from a small reserve: an exception can be made in whatever state memory is.
/// Lifetime: an exception may outlive the library that raised it. The allocator that it came from,
/// and the host's callback behind that, then stay until the exception is deleted.
class Exception {
public:
    static void* operator new(std::size_t size);
    static void operator delete(void* storage) noexcept;
    static void operator delete(Exception* object, std::destroying_delete_t);

    /// Keeps the message and captures the call stack.
    explicit Exception(const String& message);
    Exception(const Exception&) = delete;
    Exception& operator=(const Exception&) = delete;

    /// Destroys the inner exception too.
    virtual ~Exception();

    /// The name of the class.
    virtual String getName() const;

    /// Shows the report in a message box with the class's name as its title.
    /// `callStackFlags` (CallStackFlags) choose what is listed of the call stack; 0 is nothing.
    virtual void show(unsigned int callStackFlags) const;

    /// Appends the class's named parameters.
    virtual void getParameters(ParameterList& parameters) const;

    /// What went wrong; valid as long as the exception.
    const String& getMessage() const { return mMessage; }
    /// The exception that caused this one, or null; it stays this one's.
    Exception* getInnerException() const { return mInner; }
    /// Takes ownership of `inner` and destroys the one set before.
    void setInnerException(Exception* inner);

    /// The text that `show` shows.
    String getReport(unsigned int callStackFlags) const;

    Debug::CallStack& getCallStack() { return mCallStack; }

protected:
    /// Returns a copy of a text that belongs to an exception, from where its storage comes from.
    static String keep(const String& text);

private:
    SharedPtr<Memory::Allocator> mAllocator;
    Debug::CallStack mCallStack;
    String mMessage;
    Exception* mInner = nullptr;
};

} // namespace ZUNO::Common::Exceptions
