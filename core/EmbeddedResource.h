#pragma once

#include <cstddef>
#include <vector>

namespace Orv::Binaries
{
/** One file as the build embedded it. Plain data, so that the generated
    sources of the asset library need nothing but this header. */
struct EmbeddedResource
{
    const char* group;
    const char* name;
    const unsigned char* data;
    std::size_t size;
};

/** Any thread: every file the build embedded, in no particular order.
    Defined by the generated index of the asset library; Binaries builds its
    table from it once. */
std::vector<EmbeddedResource> getEmbeddedResources();
} // namespace Orv::Binaries
