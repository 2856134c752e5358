// Writes the MIDI clips of the file player: one standard MIDI file per clip of
// a chord source, named after the clip, and a list of the files written, in
// source order, for the embedding step.
//
//   halvane_clips <chord source> <output folder>

#include "ClipSource.h"
#include "MidiFileWriter.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace
{
constexpr auto listFileName = "Clips.list";
constexpr auto clipExtension = ".mid";

void writeFile (const std::filesystem::path& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream out (path, std::ios::binary | std::ios::trunc);
    out.write (reinterpret_cast<const char*> (bytes.data()), static_cast<std::streamsize> (bytes.size()));
    if (! out)
        throw std::runtime_error ("cannot write " + path.string());
}
} // namespace

int main (int argc, char** argv)
{
    using namespace Orv::Tools::Clips;

    if (argc != 3)
    {
        std::cerr << "usage: " << argv[0] << " <chord source> <output folder>\n";
        return 2;
    }

    try
    {
        std::ifstream source (argv[1]);
        if (! source)
            throw std::runtime_error ("cannot read the chord source");

        const auto clips = parseClips (source);
        const std::filesystem::path folder (argv[2]);
        std::filesystem::create_directories (folder);

        std::string list;
        for (const auto& clip : clips)
        {
            const auto path = folder / (clip.name + clipExtension);
            writeFile (path, writeMidiFile (clip));
            list += path.string() + "\n";
        }

        // Written last: the build takes the list as the sign that every file
        // is complete.
        writeFile (folder / listFileName, std::vector<uint8_t> (list.begin(), list.end()));
    }
    catch (const std::exception& e)
    {
        std::cerr << argv[1] << ": " << e.what() << "\n";
        return 1;
    }
    return 0;
}
