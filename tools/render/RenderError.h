#pragma once

#include <stdexcept>
#include <string>

namespace Orv::Tools::Render
{
/** Anything the user can put right: a wrong path, a bad number, a name that
    is not known. The tool prints its text on one line and exits with
    exitCode; nothing of this kind is a crash. */
class RenderError : public std::runtime_error
{
public:
    static constexpr int exitCode = 2;

    explicit RenderError (const std::string& what) : std::runtime_error (what) {}
};
} // namespace Orv::Tools::Render
