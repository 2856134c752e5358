#pragma once

#include <memory>

namespace Orv
{
/** Something that releases one singleton when it is destroyed. */
struct DeleterObjectBase
{
    virtual ~DeleterObjectBase() = default;
};

/** Releases every singleton, in reverse order of creation, when the last plug-in
    instance in the process ends (or at process exit, whichever is first).
    Singletons therefore die while the framework is still alive. */
class ShutdownDeleter
{
public:
    /** Any thread, under the singleton's own spin lock: keeps a deleter until
        shutdown. */
    static void add (std::shared_ptr<DeleterObjectBase> deleter);

    /** Message thread: releases all singletons now, newest first. Singletons
        asked for afterwards are made anew. */
    static void releaseAll();

    /** Registers the process-exit release once; cheap after the first call. */
    static void registerExitFunction();

    /** Counts live plug-in instances; the last one to go releases everything. */
    class InstanceCounter
    {
    public:
        InstanceCounter();
        ~InstanceCounter();
        InstanceCounter (const InstanceCounter&) = delete;
        InstanceCounter& operator= (const InstanceCounter&) = delete;

        /** Number of live instances in this process. */
        static int getNumInstances();
    };
};
} // namespace Orv
