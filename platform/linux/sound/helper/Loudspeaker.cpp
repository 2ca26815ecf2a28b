#include "platform/linux/sound/helper/Loudspeaker.hpp"

#include <canberra.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <future>
#include <list>
#include <memory>
#include <mutex>
#include <type_traits>

namespace sound {
namespace {

struct Destroy {
    void operator()(ca_proplist* properties) const { ca_proplist_destroy(properties); }
};

using Properties = std::unique_ptr<ca_proplist, Destroy>;

Properties describe(const char* key, const std::string& value) {
    ca_proplist* properties = nullptr;
    if (ca_proplist_create(&properties) != CA_SUCCESS) {
        throw std::bad_alloc{};
    }
    Properties described{properties};
    ca_proplist_sets(properties, CA_PROP_APPLICATION_NAME, "Marvelode Timer");
    ca_proplist_sets(properties, CA_PROP_APPLICATION_ICON_NAME, "org.marvelode.Timer");
    ca_proplist_sets(properties, CA_PROP_MEDIA_NAME, "Alert sound");
    ca_proplist_sets(properties, key, value.c_str());
    return described;
}

/// One attempt to play something.
class Playback {
public:
    /// Plays through `driver`, or through the desktop's usual one, and returns libcanberra's status at the end.
    int run(const char* driver, ca_proplist& properties) {
        ca_context* context = nullptr;
        if (const int status = ca_context_create(&context); status != CA_SUCCESS) {
            return status;
        }
        if (driver) {
            ca_context_set_driver(context, driver);
        }
        const int status = ca_context_play_full(context, 0, &properties, end, this);
        return status == CA_SUCCESS ? _status.get_future().get() : status;
    }

private:
    static void end(ca_context*, std::uint32_t, int status, void* playback) {
        // A sound server that dies makes libcanberra announce the end twice.
        auto& self = *static_cast<Playback*>(playback);
        std::call_once(self._once, [&] { self._status.set_value(status); });
    }

    std::once_flag _once;
    std::promise<int> _status;
};

int playThrough(const char* driver, ca_proplist& properties) {
    // They stay, contexts included, until the process ends: the ALSA driver's thread goes on for a moment after it
    // has announced the end, and destroying the context would unload the very code that it runs in.
    static std::list<Playback> playbacks;
    return playbacks.emplace_back().run(driver, properties);
}

void play(const Properties& properties) {
    const int status = playThrough(nullptr, *properties);
    if (status == CA_SUCCESS || playThrough("alsa", *properties) == CA_SUCCESS) {
        return;
    }
    throw Failure{std::string{"No sound server or sound card would play it: "} + ca_strerror(status) + "."};
}

/// The bytes of `value`, the lowest first.
template <typename Number>
void append(std::string& bytes, Number value) {
    const auto number = static_cast<std::make_unsigned_t<Number>>(value);
    for (unsigned shift = 0; shift < 8 * sizeof(Number); shift += 8) {
        bytes += static_cast<char>((number >> shift) & 0xFFU);
    }
}

std::string asWave(const Sound& sound) {
    constexpr std::uint16_t bytesPerSample = 2;
    constexpr std::uint16_t uncompressed = 1;
    const auto dataSize = static_cast<std::uint32_t>(sound.samples.size() * bytesPerSample);
    const auto frameSize = static_cast<std::uint16_t>(sound.channels * bytesPerSample);

    std::string bytes;
    bytes += "RIFF";
    append(bytes, dataSize + 36);
    bytes += "WAVEfmt ";
    append(bytes, std::uint32_t{16});
    append(bytes, uncompressed);
    append(bytes, sound.channels);
    append(bytes, sound.samplesPerSecond);
    append(bytes, sound.samplesPerSecond * frameSize);
    append(bytes, frameSize);
    append(bytes, static_cast<std::uint16_t>(8 * bytesPerSample));
    bytes += "data";
    append(bytes, dataSize);
    for (const std::int16_t sample : sound.samples) {
        append(bytes, sample);
    }
    return bytes;
}

} // namespace

// libcanberra plays files only, so the samples become one, in memory alone and until the process ends.
void play(const Sound& sound) {
    const std::string wave = asWave(sound);
    const int file = memfd_create("sound.wav", MFD_CLOEXEC);
    if (write(file, wave.data(), wave.size()) != static_cast<ssize_t>(wave.size())) {
        throw Failure{"There is no memory for the sound."};
    }
    play(describe(CA_PROP_MEDIA_FILENAME, "/proc/self/fd/" + std::to_string(file)));
}

void playThemed(const std::string& event, double volume) {
    const Properties properties = describe(CA_PROP_EVENT_ID, event);
    if (volume == 1) {
        play(properties);
        return;
    }
    const double decibels = 20 * std::log10(volume);
    ca_proplist_sets(properties.get(), CA_PROP_CANBERRA_VOLUME, std::to_string(decibels).c_str());
    if (playThrough("pulse", *properties) != CA_SUCCESS) {
        throw Failure{"No sound server would play it at that volume."}; // and no other way knows volumes
    }
}

} // namespace sound
