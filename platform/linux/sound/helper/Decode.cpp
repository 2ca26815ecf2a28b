#include "platform/linux/sound/helper/Sound.hpp"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <array>
#include <memory>
#include <string>

namespace sound {
namespace {

template <auto release>
struct Release {
    template <typename Object>
    void operator()(Object* object) const {
        release(&object);
    }
};

using Input = std::unique_ptr<AVFormatContext, Release<avformat_close_input>>;
using Decoder = std::unique_ptr<AVCodecContext, Release<avcodec_free_context>>;
using Packet = std::unique_ptr<AVPacket, Release<av_packet_free>>;
using Frame = std::unique_ptr<AVFrame, Release<av_frame_free>>;
using Resampler = std::unique_ptr<SwrContext, Release<swr_free>>;

int check(int status, const char* sentence) {
    if (status < 0) {
        std::array<char, AV_ERROR_MAX_STRING_SIZE> reason{};
        av_strerror(status, reason.data(), reason.size());
        throw Failure{std::string{sentence} + ": " + reason.data() + "."};
    }
    return status;
}

Input open(const std::filesystem::path& path) {
    AVFormatContext* input = nullptr;
    // Without the prefix a path with a colon in it could be taken for an address on the network.
    check(avformat_open_input(&input, ("file:" + path.string()).c_str(), nullptr, nullptr),
          "The file cannot be opened as a sound");
    return Input{input};
}

/// Passes every frame that is ready to `sink`.
template <typename Sink>
void drain(AVCodecContext& decoder, AVFrame& frame, Sink sink) {
    for (;;) {
        const int status = avcodec_receive_frame(&decoder, &frame);
        if (status == AVERROR(EAGAIN) || status == AVERROR_EOF) {
            return;
        }
        check(status, "The sound cannot be decoded");
        sink(frame);
    }
}

} // namespace

Sound decode(const std::filesystem::path& path) {
    av_log_set_level(AV_LOG_QUIET);
    const Input input = open(path);
    check(avformat_find_stream_info(input.get(), nullptr), "The file cannot be read as a sound");
    const AVCodec* codec = nullptr;
    const int stream = av_find_best_stream(input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    check(stream, stream == AVERROR_DECODER_NOT_FOUND ? "No decoder for the sound is installed"
                                                      : "The file holds no sound");

    const Decoder decoder{avcodec_alloc_context3(codec)};
    const Packet packet{av_packet_alloc()};
    const Frame decoded{av_frame_alloc()};
    const Frame converted{av_frame_alloc()};
    const Resampler resampler{swr_alloc()};
    if (!decoder || !packet || !decoded || !converted || !resampler) {
        throw std::bad_alloc{};
    }
    check(avcodec_parameters_to_context(decoder.get(), input->streams[stream]->codecpar),
          "The sound cannot be decoded");
    decoder->pkt_timebase = input->streams[stream]->time_base;
    check(avcodec_open2(decoder.get(), codec, nullptr), "The decoder for the sound cannot be started");

    Sound sound;
    const auto append = [&](const AVFrame& frame) {
        if (sound.channels == 0) {
            sound.channels = static_cast<std::uint16_t>(std::min(frame.ch_layout.nb_channels, 2));
            sound.samplesPerSecond = static_cast<std::uint32_t>(frame.sample_rate);
        }
        av_frame_unref(converted.get());
        converted->format = AV_SAMPLE_FMT_S16;
        converted->sample_rate = static_cast<int>(sound.samplesPerSecond);
        av_channel_layout_default(&converted->ch_layout, sound.channels);
        check(swr_convert_frame(resampler.get(), converted.get(), &frame), "The sound cannot be converted");
        const auto* first = reinterpret_cast<const std::int16_t*>(converted->data[0]);
        sound.samples.insert(sound.samples.end(), first,
                             first + std::ptrdiff_t{converted->nb_samples} * sound.channels);
    };

    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index == stream) {
            check(avcodec_send_packet(decoder.get(), packet.get()), "The sound cannot be decoded");
            drain(*decoder, *decoded, append);
        }
        av_packet_unref(packet.get());
    }
    check(avcodec_send_packet(decoder.get(), nullptr), "The sound cannot be decoded");
    drain(*decoder, *decoded, append);
    if (sound.samples.empty()) {
        throw Failure{"The file holds no sound."};
    }
    return sound;
}

} // namespace sound
