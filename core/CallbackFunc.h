#pragma once

#include <functional>
#include <utility>

namespace Orv
{
/** A callable of no arguments and no result. An empty one may be called and
    does nothing, so that a callback slot never needs a null check. */
class CallbackFunc
{
public:
    CallbackFunc() = default;

    template <typename Func,
              typename = std::enable_if_t<! std::is_same_v<std::decay_t<Func>, CallbackFunc>>>
    CallbackFunc (Func&& f) : func (std::forward<Func> (f))
    {
    }

    /** Any thread: runs the wrapped function, or nothing when empty. */
    void operator()() const
    {
        if (func)
            func();
    }

    bool isEmpty() const noexcept { return ! func; }
    explicit operator bool() const noexcept { return static_cast<bool> (func); }

private:
    std::function<void()> func;
};

/** Makes one callback that runs a and then b. */
inline CallbackFunc chainFunctions (const CallbackFunc& a, const CallbackFunc& b)
{
    return CallbackFunc ([a, b] {
        a();
        b();
    });
}
} // namespace Orv
