#pragma once

#include "core/ShutdownDeleter.h"

#include <atomic>

namespace Orv
{
/** Process-wide instances, made on first use and released by the
    ShutdownDeleter. The first call for a type allocates, so it must not happen
    on the audio thread; later calls take only a short spin lock. */
template <typename T>
class Singleton
{
public:
    /** Any thread: the one instance, made if absent. */
    static T* get()
    {
        ShutdownDeleter::registerExitFunction();

        lock();
        if (pointer() == nullptr)
        {
            pointer() = new T();
            ShutdownDeleter::add (std::make_shared<DeleterObject>());
        }
        auto* result = pointer();
        unlock();
        return result;
    }

    /** Any thread: the instance if it exists, without making one. */
    static T* getIfExists()
    {
        lock();
        auto* result = pointer();
        unlock();
        return result;
    }

private:
    struct DeleterObject : DeleterObjectBase
    {
        ~DeleterObject() override
        {
            lock();
            auto* p = pointer();
            pointer() = nullptr;
            unlock();
            delete p;
        }
    };

    static T*& pointer()
    {
        static T* p = nullptr;
        return p;
    }

    static std::atomic<bool>& lockWord()
    {
        static std::atomic<bool> word { false };
        return word;
    }

    static void lock()
    {
        while (lockWord().exchange (true, std::memory_order_acquire)) {}
    }

    static void unlock() { lockWord().store (false, std::memory_order_release); }
};
} // namespace Orv
