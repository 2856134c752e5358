#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orv::Audio::Formats::Ruxa
{
/** Scratch memory for decoding blocks, kept between reads so that a steady
    read allocates nothing. Readers of one source may share one; like a reader
    it is used by one thread at a time. */
class Cache
{
public:
    /** The reading thread: makes room for a block of these sizes. Allocates
        only to grow, so once a reader has sized it for its largest block no
        read allocates again. */
    void prepare (size_t compressedBytes, size_t decodedBytes)
    {
        if (compressed.size() < compressedBytes)
            compressed.resize (compressedBytes);

        if (decoded.size() < decodedBytes)
            decoded.resize (decodedBytes);
    }

    /** The reading thread: room for at least the compressed size last prepared. */
    char* getCompressed() noexcept { return reinterpret_cast<char*> (compressed.data()); }

    /** The reading thread: room for at least the decoded size last prepared. */
    uint8_t* getDecoded() noexcept { return decoded.data(); }

private:
    std::vector<uint8_t> compressed;
    std::vector<uint8_t> decoded;
};
} // namespace Orv::Audio::Formats::Ruxa
