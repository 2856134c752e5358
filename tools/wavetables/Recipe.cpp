#include "Recipe.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>
#include <stdexcept>

namespace Orv::Tools::Wavetables
{
namespace
{
    std::string lineError (int line, const std::string& message)
    {
        return "line " + std::to_string (line) + ": " + message;
    }

    bool parseNumber (const std::string& text, double& value)
    {
        if (text.empty())
            return false;
        std::istringstream in (text);
        in >> value;
        return ! in.fail() && in.eof();
    }

    bool startsLikeNumber (const std::string& token)
    {
        const auto c = static_cast<unsigned char> (token[0]);
        return std::isdigit (c) || c == '-' || c == '+' || c == '.';
    }

    bool isWord (const std::string& token)
    {
        return std::all_of (token.begin(), token.end(), [] (char c) { return std::isalpha (static_cast<unsigned char> (c)); });
    }

    std::vector<std::string> tokensOf (const std::string& text)
    {
        std::istringstream in (text);
        std::vector<std::string> tokens;
        for (std::string token; in >> token;)
            tokens.push_back (token);
        return tokens;
    }

    bool isPowerOfTwo (int n) { return n > 0 && (n & (n - 1)) == 0; }

    // File settings are lines of their own, not operations.
    bool applySetting (Recipe& recipe, const Operation& op)
    {
        if (op.kind == "channels")
        {
            if (op.arguments.size() != 1 || (op.arguments[0] != "mono" && op.arguments[0] != "stereo"))
                op.fail ("channels is mono or stereo");
            recipe.channels = op.arguments[0] == "mono" ? 1 : 2;
            return true;
        }

        if (op.kind == "rate" || op.kind == "frames" || op.kind == "harmonics")
        {
            const auto value = static_cast<int> (op.number (0));
            if (value <= 0)
                op.fail (op.kind + " must be positive");
            if (op.kind == "rate")
                recipe.sampleRate = value;
            else if (op.kind == "frames")
                recipe.frames = value;
            else
                recipe.harmonics = value;
            return true;
        }

        return false;
    }

    void checkRecipe (const Recipe& recipe, std::set<std::string>& names, std::set<std::string>& waveNames)
    {
        const auto fail = [&recipe] (const std::string& message) {
            throw std::runtime_error (lineError (recipe.line, "[" + recipe.name + "] " + message));
        };

        constexpr auto separator = " - ";
        const auto split = recipe.name.find (separator);
        if (split == std::string::npos || split == 0 || recipe.name.size() <= split + 3)
            fail ("a wave is named \"<Category> - <Wave name>\"");

        // Sounds refer to a table by its wave name alone, so two categories
        // must never share one.
        if (! names.insert (recipe.name).second || ! waveNames.insert (recipe.name.substr (split + 3)).second)
            fail ("the wave name is already taken");

        if (! isPowerOfTwo (recipe.frames))
            fail ("frames must be a power of two");
        if (recipe.harmonics * 2 >= recipe.frames)
            fail ("harmonics must stay below half the frames");
        if (recipe.operations.empty())
            fail ("a wave needs at least one operation");
    }
} // namespace

double Operation::number (size_t index) const
{
    double value = 0.0;
    if (index >= arguments.size())
        fail (kind + " needs " + std::to_string (index + 1) + " value(s)");
    if (! parseNumber (arguments[index], value))
        fail ("not a number: " + arguments[index]);
    return value;
}

double Operation::get (const std::string& key, double fallback) const
{
    const auto found = named.find (key);
    return found != named.end() ? found->second : fallback;
}

void Operation::allowOnly (const std::vector<std::string>& keys) const
{
    for (const auto& entry : named)
        if (std::find (keys.begin(), keys.end(), entry.first) == keys.end())
            fail (kind + " has no setting \"" + entry.first + "\"");
}

void Operation::fail (const std::string& message) const
{
    throw std::runtime_error (lineError (line, message));
}

int Recipe::getHarmonicLimit() const
{
    return harmonics > 0 ? harmonics : std::min (defaultHarmonics, frames / 2 - 1);
}

std::vector<Recipe> parseRecipes (std::istream& input)
{
    std::vector<Recipe> recipes;
    std::set<std::string> names, waveNames;
    int lineNumber = 0;

    for (std::string text; std::getline (input, text);)
    {
        ++lineNumber;
        text = text.substr (0, text.find ('#'));
        const auto tokens = tokensOf (text);
        if (tokens.empty())
            continue;

        const auto first = text.find_first_not_of (" \t");
        if (text[first] == '[')
        {
            const auto close = text.find (']', first);
            if (close == std::string::npos || text.find_first_not_of (" \t\r", close + 1) != std::string::npos)
                throw std::runtime_error (lineError (lineNumber, "a wave starts with a line \"[<Category> - <Wave name>]\""));
            Recipe recipe;
            recipe.name = text.substr (first + 1, close - first - 1);
            recipe.line = lineNumber;
            recipes.push_back (recipe);
            continue;
        }

        if (recipes.empty())
            throw std::runtime_error (lineError (lineNumber, "an operation before the first wave"));

        Operation op;
        op.kind = tokens[0];
        op.line = lineNumber;
        for (size_t i = 1; i < tokens.size(); ++i)
        {
            // "poles 4": a word followed by a number names a setting.
            if (isWord (tokens[i]) && i + 1 < tokens.size() && startsLikeNumber (tokens[i + 1]))
            {
                double value = 0.0;
                if (! parseNumber (tokens[i + 1], value))
                    op.fail ("not a number: " + tokens[i + 1]);
                if (! op.named.emplace (tokens[i], value).second)
                    op.fail ("\"" + tokens[i] + "\" given twice");
                ++i;
            }
            else
            {
                op.arguments.push_back (tokens[i]);
            }
        }

        if (! applySetting (recipes.back(), op))
            recipes.back().operations.push_back (op);
    }

    for (const auto& recipe : recipes)
        checkRecipe (recipe, names, waveNames);

    return recipes;
}
} // namespace Orv::Tools::Wavetables
