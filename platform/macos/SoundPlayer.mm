#import "platform/macos/SoundPlayer.hpp"

#import "platform/macos/Strings.hpp"

namespace macos {

bool SoundPlayer::open(const std::filesystem::path& url) {
    if (_opened.contains(url)) {
        return true;
    }
    Retained<NSSound> sound{[[NSSound alloc] initWithContentsOfURL:[NSURL fileURLWithPath:toCocoa(url.native())]
                                                       byReference:YES]};
    if (!sound.get()) {
        return false;
    }
    _opened[url] = std::move(sound);
    return true;
}

bool SoundPlayer::play(const std::filesystem::path& url) { return open(url) && [_opened[url].get() play]; }

} // namespace macos
