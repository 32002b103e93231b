#pragma once

#include "common/memory/memorymanaged.h"
#include "common/memory/objectcreation.h"

namespace ZUNO::Common {

/// Base of the classes of which a process holds one object at most. The object lives from
/// `createInstance` to `destroyInstance`; creation and destruction are for start-up and shut-down
/// and take no lock.
template <typename T>
class Singleton : public Memory::MemoryManaged {
public:
    /// Makes the instance from `allocator`; without memory there is none afterwards.
    /// An instance that exists is reported and stays.
    static void createInstance(const SharedPtr<Memory::Allocator>& allocator) {
        if (!isVacant())
            return;
        sInstance = new (allocator) T();
    }

    /// Makes `instance` the instance and owns it. An instance that exists is reported and stays,
    /// and `instance` remains its maker's.
    static void createInstance(T* instance) {
        if (!isVacant())
            return;
        sInstance = instance;
    }

    /// The instance, or null.
    static T* getInstance() { return sInstance; }

    /// Destroys the instance, if there is one.
    static void destroyInstance() {
        T* const instance = sInstance;
        sInstance = nullptr;
        delete instance;
    }

private:
    static bool isVacant() {
        return ZUNO_CHECK_AS(sInstance == nullptr, "",
                             "there is already an instance of this singleton object");
    }

    inline static T* sInstance = nullptr;
};

} // namespace ZUNO::Common
