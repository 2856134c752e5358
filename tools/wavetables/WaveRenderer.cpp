#include "WaveRenderer.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <numeric>

namespace Orv::Tools::Wavetables
{
namespace
{
    using Complex = std::complex<double>;

    // A channel while it is being built: the complex amplitude of each
    // harmonic (index 0 unused, the wave carries no DC), such that the wave is
    // the sum over h of Re (spectrum[h] * e^(2 pi i h t)), t in periods.
    using Spectrum = std::vector<Complex>;

    constexpr double pi = 3.14159265358979323846;
    constexpr double twoPi = 2.0 * pi;

    // Drawn shapes and waveshapers work on this many points per period before
    // they are cut back to the harmonic limit; what folds back from above it
    // lies some 90 dB down.
    constexpr int oversampledPoints = 16384;

    constexpr double goldenRatioFraction = 0.6180339887498949;

    //==========================================================================
    void fft (std::vector<Complex>& data, bool inverse)
    {
        const auto n = data.size();

        for (size_t i = 1, j = 0; i < n; ++i)
        {
            auto bit = n >> 1;
            for (; (j & bit) != 0; bit >>= 1)
                j ^= bit;
            j ^= bit;
            if (i < j)
                std::swap (data[i], data[j]);
        }

        for (size_t length = 2; length <= n; length <<= 1)
        {
            const auto angle = (inverse ? twoPi : -twoPi) / static_cast<double> (length);
            for (size_t start = 0; start < n; start += length)
            {
                for (size_t k = 0; k < length / 2; ++k)
                {
                    const auto w = std::polar (1.0, angle * static_cast<double> (k));
                    const auto a = data[start + k];
                    const auto b = data[start + k + length / 2] * w;
                    data[start + k] = a + b;
                    data[start + k + length / 2] = a - b;
                }
            }
        }
    }

    std::vector<double> synthesise (const Spectrum& spectrum, int points)
    {
        std::vector<Complex> bins (static_cast<size_t> (points));
        for (size_t h = 1; h < spectrum.size() && h < bins.size() / 2; ++h)
        {
            bins[h] = spectrum[h] * 0.5;
            bins[bins.size() - h] = std::conj (spectrum[h]) * 0.5;
        }
        fft (bins, true);

        std::vector<double> samples (bins.size());
        for (size_t i = 0; i < bins.size(); ++i)
            samples[i] = bins[i].real();
        return samples;
    }

    Spectrum analyse (const std::vector<double>& samples, int harmonics)
    {
        std::vector<Complex> bins (samples.begin(), samples.end());
        fft (bins, false);

        Spectrum spectrum (static_cast<size_t> (harmonics) + 1);
        for (size_t h = 1; h < spectrum.size(); ++h)
            spectrum[h] = bins[h] * (2.0 / static_cast<double> (samples.size()));
        return spectrum;
    }

    Spectrum fromShape (const std::function<double (double)>& shape, int harmonics)
    {
        std::vector<double> samples (oversampledPoints);
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = shape (static_cast<double> (i) / oversampledPoints);
        return analyse (samples, harmonics);
    }

    // A partial in sine phase: amplitude a at harmonic h is a * sin (2 pi h t).
    Complex sinePartial (double amplitude) { return Complex (0.0, -amplitude); }

    //==========================================================================
    // Seeded and fixed, unlike the standard library's distributions, so that
    // every platform draws the same noise.
    class Random
    {
    public:
        explicit Random (uint64_t seed) : state (seed) {}

        double uniform() { return static_cast<double> (next() >> 11) * 0x1.0p-53; }

        Complex gaussian()
        {
            const auto radius = std::sqrt (-2.0 * std::log (1.0 - uniform()));
            return std::polar (radius, twoPi * uniform());
        }

    private:
        uint64_t next()
        {
            auto z = (state += 0x9E3779B97F4A7C15ull);
            z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
            z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
            return z ^ (z >> 31);
        }

        uint64_t state;
    };

    //==========================================================================
    // Sources: each gives a spectrum that is added to the channel.
    struct Context
    {
        int harmonics;
        int channel;
    };

    Spectrum seriesSpectrum (const Operation& op, const Context& context)
    {
        Spectrum s (static_cast<size_t> (context.harmonics) + 1);
        const auto& kind = op.kind;

        if (kind == "pulse")
        {
            const auto width = op.number (0) / 100.0;
            if (width <= 0.0 || width >= 1.0)
                op.fail ("a pulse width is a percentage between 0 and 100");
            for (size_t h = 1; h < s.size(); ++h)
            {
                const auto w = twoPi * static_cast<double> (h);
                s[h] = 4.0 * (1.0 - std::polar (1.0, -w * width)) / Complex (0.0, w);
            }
            return s;
        }

        for (size_t h = 1; h < s.size(); ++h)
        {
            const auto n = static_cast<double> (h);
            const bool odd = h % 2 == 1;
            // The saw falls, so that its partials share their sign with those of
            // a square or pulse and a mix of them adds up instead of cancelling.
            if (kind == "saw")
                s[h] = sinePartial (2.0 / (pi * n));
            else if (kind == "square" && odd)
                s[h] = sinePartial (4.0 / (pi * n));
            else if (kind == "triangle" && odd)
                s[h] = sinePartial ((h % 4 == 1 ? 8.0 : -8.0) / (pi * pi * n * n));
        }
        return s;
    }

    Spectrum partialsSpectrum (const Operation& op, const Context& context)
    {
        Spectrum s (static_cast<size_t> (context.harmonics) + 1);
        for (size_t i = 0; i < op.arguments.size(); ++i)
        {
            const auto& text = op.arguments[i];
            const auto colon = text.find (':');
            size_t harmonic = i + 1;
            double amplitude = 0.0;

            if (colon == std::string::npos)
            {
                amplitude = op.number (i);
            }
            else
            {
                Operation pair = op;
                pair.arguments = { text.substr (0, colon), text.substr (colon + 1) };
                harmonic = static_cast<size_t> (pair.number (0));
                amplitude = pair.number (1);
            }

            if (harmonic < 1 || harmonic >= s.size())
                op.fail ("partial " + std::to_string (harmonic) + " is outside the wave's harmonics");
            s[harmonic] += sinePartial (amplitude);
        }
        return s;
    }

    // Footages in drawbar order: 16', 5 1/3', 8', 4', 2 2/3', 2', 1 3/5',
    // 1 1/3', 1', as harmonics of the 16' pipe, which is the period.
    constexpr int drawbarHarmonics[] = { 1, 3, 2, 4, 6, 8, 10, 12, 16 };
    constexpr int drawbarCount = 9;
    constexpr int drawbarFull = 8;
    constexpr double decibelsPerDrawbarStep = 3.0;

    Spectrum drawbarSpectrum (const Operation& op, const Context& context)
    {
        std::string registration;
        for (const auto& group : op.arguments)
            registration += group;

        if (registration.size() != drawbarCount
            || ! std::all_of (registration.begin(), registration.end(), [] (char c) { return c >= '0' && c <= '8'; }))
            op.fail ("drawbars are nine digits from 0 to 8, such as 88 8000 000");

        Spectrum s (static_cast<size_t> (context.harmonics) + 1);
        for (int bar = 0; bar < drawbarCount; ++bar)
        {
            const int position = registration[static_cast<size_t> (bar)] - '0';
            if (position == 0)
                continue;
            const auto decibels = -decibelsPerDrawbarStep * (drawbarFull - position);
            s.at (static_cast<size_t> (drawbarHarmonics[bar])) += sinePartial (std::pow (10.0, decibels / 20.0));
        }
        return s;
    }

    // A string plucked at one point and heard by a pickup at another, both as
    // fractions of its length from the bridge; a pickup senses velocity, so the
    // partials fall as 1/h with the notches of both positions.
    Spectrum stringSpectrum (const Operation& op, const Context& context)
    {
        op.allowOnly ({ "pluck", "pickup", "level", "on" });
        const auto pluck = op.get ("pluck", 0.2);
        const auto pickup = op.get ("pickup", 0.1);
        if (pluck <= 0.0 || pluck >= 1.0 || pickup <= 0.0 || pickup >= 1.0)
            op.fail ("pluck and pickup are fractions of the string between 0 and 1");

        Spectrum s (static_cast<size_t> (context.harmonics) + 1);
        for (size_t h = 1; h < s.size(); ++h)
        {
            const auto n = static_cast<double> (h);
            s[h] = sinePartial (std::sin (pi * n * pluck) * std::sin (pi * n * pickup) / n);
        }
        return s;
    }

    Spectrum noiseSpectrum (const Operation& op, const Context& context)
    {
        op.allowOnly ({ "from", "to", "seed", "level", "on" });
        const auto from = static_cast<int> (op.get ("from", 1));
        const auto to = static_cast<int> (op.get ("to", context.harmonics));
        if (from < 1 || to > context.harmonics || from > to)
            op.fail ("the noise band must lie within the wave's harmonics");

        // Each channel draws from its own stream, so a stereo noise is wide.
        constexpr uint64_t channelStride = 0x2545F4914F6CDD1Dull;
        Random random (static_cast<uint64_t> (op.get ("seed", 1)) + channelStride * static_cast<uint64_t> (context.channel));

        // Complex Gaussian partials: white noise, repeated once per period, at
        // an RMS of about one half whatever the width of the band.
        Spectrum s (static_cast<size_t> (context.harmonics) + 1);
        const auto scale = 1.0 / std::sqrt (static_cast<double> (to - from + 1));
        for (int h = from; h <= to; ++h)
            s[static_cast<size_t> (h)] = random.gaussian() * scale;
        return s;
    }

    // A line through points (time in periods, value), back to the first point
    // at the end of the period; two points at one time make a jump.
    Spectrum drawSpectrum (const Operation& op, const Context& context)
    {
        if (op.arguments.size() < 4 || op.arguments.size() % 2 != 0)
            op.fail ("draw takes pairs of time and value, at least two of them");

        std::vector<std::pair<double, double>> points;
        for (size_t i = 0; i < op.arguments.size(); i += 2)
        {
            const auto t = op.number (i);
            if (t < 0.0 || t >= 1.0 || (! points.empty() && t < points.back().first))
                op.fail ("draw's times rise from 0 and stay below 1");
            points.emplace_back (t, op.number (i + 1));
        }
        points.emplace_back (points.front().first + 1.0, points.front().second);

        return fromShape (
            [&points] (double t) {
                if (t < points.front().first)
                    t += 1.0;
                for (size_t i = 0; i + 1 < points.size(); ++i)
                {
                    const auto& a = points[i];
                    const auto& b = points[i + 1];
                    if (t >= a.first && t < b.first)
                        return a.second + (b.second - a.second) * (t - a.first) / (b.first - a.first);
                }
                return points.back().second;
            },
            context.harmonics);
    }

    Spectrum stepsSpectrum (const Operation& op, const Context& context)
    {
        if (op.arguments.empty())
            op.fail ("steps needs at least one value");
        std::vector<double> values;
        for (size_t i = 0; i < op.arguments.size(); ++i)
            values.push_back (op.number (i));

        return fromShape (
            [&values] (double t) { return values[std::min (values.size() - 1, static_cast<size_t> (t * static_cast<double> (values.size())))]; },
            context.harmonics);
    }

    // A saw reset by the period: the sound of a synced oscillator caught at one
    // ratio.
    Spectrum syncSpectrum (const Operation& op, const Context& context)
    {
        const auto ratio = op.number (0);
        if (ratio < 1.0)
            op.fail ("a synced oscillator runs at least as fast as the period");
        return fromShape ([ratio] (double t) { return 2.0 * std::fmod (ratio * t, 1.0) - 1.0; }, context.harmonics);
    }

    Spectrum fmSpectrum (const Operation& op, const Context& context)
    {
        op.allowOnly ({ "ratio", "index", "level", "on" });
        const auto ratio = op.get ("ratio", 1.0);
        const auto index = op.get ("index", 1.0);
        if (ratio < 1.0 || ratio != std::floor (ratio))
            op.fail ("an FM ratio is a whole number, so that the wave repeats in one period");
        return fromShape ([ratio, index] (double t) { return std::sin (twoPi * t + index * std::sin (twoPi * ratio * t)); },
                          context.harmonics);
    }

    bool addSource (const Operation& op, const Context& context, Spectrum& channel)
    {
        Spectrum source;
        const auto& kind = op.kind;

        if (kind == "saw" || kind == "square" || kind == "triangle" || kind == "pulse")
            source = seriesSpectrum (op, context);
        else if (kind == "partials")
            source = partialsSpectrum (op, context);
        else if (kind == "drawbars")
            source = drawbarSpectrum (op, context);
        else if (kind == "string")
            source = stringSpectrum (op, context);
        else if (kind == "noise")
            source = noiseSpectrum (op, context);
        else if (kind == "draw")
            source = drawSpectrum (op, context);
        else if (kind == "steps")
            source = stepsSpectrum (op, context);
        else if (kind == "sync")
            source = syncSpectrum (op, context);
        else if (kind == "fm")
            source = fmSpectrum (op, context);
        else
            return false;

        if (kind != "string" && kind != "noise" && kind != "fm")
            op.allowOnly ({ "level", "on" });

        // "on 2" moves the whole source up so that its fundamental sits on the
        // second harmonic: an octave up, within the same period.
        const auto level = op.get ("level", 1.0);
        const auto on = static_cast<size_t> (op.get ("on", 1.0));
        if (on < 1)
            op.fail ("on names a harmonic, from 1");

        for (size_t h = 1; h < source.size() && h * on < channel.size(); ++h)
            channel[h * on] += source[h] * level;
        return true;
    }

    //==========================================================================
    // Filters: a gain per harmonic, without phase shift, so that filtering
    // never moves the wave in time.
    double twoPoleResponse (double x, double resonance)
    {
        return 1.0 / std::sqrt ((1.0 - x * x) * (1.0 - x * x) + (x / resonance) * (x / resonance));
    }

    constexpr double flatResonance = 0.7071067811865476;

    double poleResponse (double x, int poles, double resonance)
    {
        auto gain = poles % 2 == 1 ? 1.0 / std::sqrt (1.0 + x * x) : 1.0;
        for (int pair = 0; pair < poles / 2; ++pair)
            gain *= twoPoleResponse (x, resonance);
        return gain;
    }

    bool applyFilter (const Operation& op, Spectrum& channel)
    {
        std::function<double (double)> gain;
        const auto& kind = op.kind;

        if (kind == "lowpass" || kind == "highpass")
        {
            op.allowOnly ({ "poles", "resonance" });
            const auto corner = op.number (0);
            const auto poles = static_cast<int> (op.get ("poles", 2));
            const auto resonance = op.get ("resonance", flatResonance);
            if (corner <= 0.0 || poles < 1 || resonance <= 0.0)
                op.fail ("a filter needs a positive corner (in harmonics), poles and resonance");

            if (kind == "lowpass")
                gain = [=] (double h) { return poleResponse (h / corner, poles, resonance); };
            else
                gain = [=] (double h) { return std::pow (h / corner, poles) * poleResponse (h / corner, poles, resonance); };
        }
        else if (kind == "formant")
        {
            op.allowOnly ({ "width", "gain" });
            const auto centre = op.number (0);
            const auto width = op.get ("width", 0.5);
            const auto decibels = op.get ("gain", 12.0);
            if (centre <= 0.0 || width <= 0.0)
                op.fail ("a formant needs a positive centre (in harmonics) and width (in octaves)");
            gain = [=] (double h) {
                const auto octaves = std::log2 (h / centre) / width;
                return std::pow (10.0, decibels * std::exp (-0.5 * octaves * octaves) / 20.0);
            };
        }
        else if (kind == "tilt")
        {
            const auto decibelsPerOctave = op.number (0);
            gain = [=] (double h) { return std::pow (10.0, decibelsPerOctave * std::log2 (h) / 20.0); };
        }
        else
        {
            return false;
        }

        for (size_t h = 1; h < channel.size(); ++h)
            channel[h] *= gain (static_cast<double> (h));
        return true;
    }

    //==========================================================================
    // Shapers bend the wave itself; the wave is first scaled to a peak of 1 so
    // that a drive means the same whatever came before.
    bool applyShaper (const Operation& op, Spectrum& channel, int harmonics)
    {
        std::function<double (double)> shape;
        const auto& kind = op.kind;

        if (kind == "softclip" || kind == "fold" || kind == "clip")
        {
            const auto drive = op.number (0);
            if (drive <= 0.0)
                op.fail ("a drive is positive");
            if (kind == "softclip")
                shape = [=] (double x) { return std::tanh (drive * x) / std::tanh (drive); };
            else if (kind == "fold")
                shape = [=] (double x) { return std::sin (0.5 * pi * drive * x); };
            else
                shape = [=] (double x) { return std::clamp (drive * x, -1.0, 1.0); };
        }
        else if (kind == "crush")
        {
            const auto levels = op.number (0);
            if (levels < 2.0)
                op.fail ("crush keeps at least two levels");
            const auto step = 2.0 / (levels - 1.0);
            shape = [=] (double x) { return std::round ((x + 1.0) / step) * step - 1.0; };
        }
        else if (kind == "bend")
        {
            const auto amount = op.number (0);
            shape = [=] (double x) { return x + amount * x * x; };
        }
        else
        {
            return false;
        }

        auto samples = synthesise (channel, oversampledPoints);
        const auto peak = std::accumulate (samples.begin(), samples.end(), 0.0,
                                           [] (double m, double x) { return std::max (m, std::abs (x)); });
        if (peak <= 0.0)
            op.fail ("nothing to shape yet");

        for (auto& x : samples)
            x = shape (x / peak);
        channel = analyse (samples, harmonics);
        return true;
    }

    //==========================================================================
    // Stereo: both change the right channel against the left.
    bool applyStereo (const Operation& op, Spectrum& channel, int channelIndex)
    {
        if (op.kind == "pair")
        {
            // A copy of the wave shifted in time and added: what two slightly
            // detuned oscillators sound like at one moment, a comb of notches.
            if (op.arguments.size() != 2)
                op.fail ("pair takes the shift of the copy in periods, left then right");
            const auto shift = op.number (static_cast<size_t> (std::min (channelIndex, 1)));
            for (size_t h = 1; h < channel.size(); ++h)
                channel[h] *= 1.0 + std::polar (1.0, twoPi * static_cast<double> (h) * shift);
            return true;
        }

        if (op.kind == "spread")
        {
            // Turns the phase of each partial above the fundamental in the right
            // channel by a different amount: the same spectrum on both sides,
            // a different shape, a wide image.
            const auto amount = op.number (0);
            if (channelIndex == 1)
            {
                for (size_t h = 2; h < channel.size(); ++h)
                {
                    const auto fraction = std::fmod (static_cast<double> (h) * goldenRatioFraction, 1.0);
                    channel[h] *= std::polar (1.0, pi * amount * (2.0 * fraction - 1.0));
                }
            }
            return true;
        }

        return false;
    }

    //==========================================================================
    void scaleToLoudness (Channels& channels)
    {
        double sumOfSquares = 0.0, peak = 0.0;
        size_t count = 0;
        for (const auto& channel : channels)
        {
            for (const auto x : channel)
            {
                sumOfSquares += x * x;
                peak = std::max (peak, std::abs (x));
            }
            count += channel.size();
        }

        const auto rms = std::sqrt (sumOfSquares / static_cast<double> (count));
        if (rms <= 0.0)
            return;

        const auto gain = std::min (targetRms / rms, peakLimit / peak);
        for (auto& channel : channels)
            for (auto& x : channel)
                x *= gain;
    }

    // The period is turned to start where all channels are near zero, between
    // two quiet samples: a reader that wraps from the last sample to the first,
    // or a note that starts at sample 0, then makes no click.
    void startWhereQuiet (Channels& channels)
    {
        const auto frames = channels.front().size();
        size_t best = 0;
        double bestLoudness = 0.0;

        for (size_t start = 0; start < frames; ++start)
        {
            const auto previous = (start + frames - 1) % frames;
            double loudness = 0.0;
            for (const auto& channel : channels)
                loudness += std::abs (channel[start]) + std::abs (channel[previous]);

            if (start == 0 || loudness < bestLoudness)
            {
                best = start;
                bestLoudness = loudness;
            }
        }

        for (auto& channel : channels)
            std::rotate (channel.begin(), channel.begin() + static_cast<std::ptrdiff_t> (best), channel.end());
    }
} // namespace

Channels renderWave (const Recipe& recipe)
{
    Channels channels;

    for (int c = 0; c < recipe.channels; ++c)
    {
        const Context context { recipe.getHarmonicLimit(), c };
        Spectrum spectrum (static_cast<size_t> (context.harmonics) + 1);

        for (const auto& op : recipe.operations)
        {
            if (! addSource (op, context, spectrum) && ! applyFilter (op, spectrum)
                && ! applyShaper (op, spectrum, context.harmonics) && ! applyStereo (op, spectrum, c))
                op.fail ("unknown operation \"" + op.kind + "\"");
        }

        channels.push_back (synthesise (spectrum, recipe.frames));
    }

    scaleToLoudness (channels);
    startWhereQuiet (channels);
    return channels;
}
} // namespace Orv::Tools::Wavetables
