#import "platform/macos/Timers.hpp"

/// The target of one `NSTimer`, which keeps it alive.
@interface TimerTarget : NSObject {
    std::shared_ptr<platform::Timer> _timer;
}
- (instancetype)initWithTimer:(std::shared_ptr<platform::Timer>)timer;
- (void)timeExpired:(NSTimer*)fired;
@end

@implementation TimerTarget

- (instancetype)initWithTimer:(std::shared_ptr<platform::Timer>)timer {
    if ((self = [super init])) {
        _timer = std::move(timer);
    }
    return self;
}

- (void)timeExpired:(NSTimer*)fired {
    (void)fired;
    @autoreleasepool {
        const std::shared_ptr<platform::Timer> timer = _timer; // invalidating the timer releases this target
        platform::Timer::fire(timer);
    }
}

@end

namespace macos {

Timers::~Timers() {
    for (const auto& [timer, scheduled] : _scheduled) {
        [scheduled.get() invalidate];
    }
}

void Timers::schedule(const std::shared_ptr<platform::Timer>& timer) {
    const Retained<TimerTarget> target{[[TimerTarget alloc] initWithTimer:timer]};
    NSTimer* const scheduled = [NSTimer scheduledTimerWithTimeInterval:timer->interval()
                                                                target:target.get()
                                                              selector:@selector(timeExpired:)
                                                              userInfo:nil
                                                               repeats:timer->repeats()];
    if (timer->repeats()) {
        [scheduled setTolerance:timer->interval() / 10]; // saves energy; a reminder is punctual
    }
    _scheduled[timer.get()] = Retained<NSTimer>{[scheduled retain]};
}

void Timers::cancel(const platform::Timer& timer) {
    if (const auto entry = _scheduled.extract(&timer)) {
        [entry.mapped().get() invalidate];
    }
}

} // namespace macos
