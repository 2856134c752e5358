// Writes the wavetables: one single-period WAV file per wave of a recipe file,
// named after the wave, and a list of the files written, in recipe order, for
// the embedding step.
//
//   halvane_wavetables <recipe file> <output folder>

#include "Recipe.h"
#include "WavEncoder.h"
#include "WaveRenderer.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace
{
constexpr auto listFileName = "Wavetables.list";

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
    using namespace Orv::Tools::Wavetables;

    if (argc != 3)
    {
        std::cerr << "usage: " << argv[0] << " <recipe file> <output folder>\n";
        return 2;
    }

    try
    {
        std::ifstream recipeFile (argv[1]);
        if (! recipeFile)
            throw std::runtime_error ("cannot read the recipe file");

        const auto recipes = parseRecipes (recipeFile);
        const std::filesystem::path folder (argv[2]);
        std::filesystem::create_directories (folder);

        std::string list;
        for (const auto& recipe : recipes)
        {
            const auto path = folder / (recipe.name + ".wav");
            writeFile (path, encodeWav (renderWave (recipe), recipe.sampleRate));
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
