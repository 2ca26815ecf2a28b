#import "platform/macos/Sounds.hpp"

#import "platform/macos/Strings.hpp"

namespace cocoa {

bool Sounds::open(const std::filesystem::path& url) {
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

bool Sounds::play(const std::filesystem::path& url) { return open(url) && [_opened[url].get() play]; }

} // namespace cocoa
