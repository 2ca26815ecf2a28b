// Every line of the preprocessor here but the first three is one that a component must not contain.
#include "app/Offender.hpp"
#include "platform/Timer.hpp"
#include <vector>
#include "platform/linux/LinuxDesktop.hpp"
#include "Offender.hpp"
#include <chrono>
#include <thread>
#include <unistd.h>
#include <sys/types.h>
#ifdef __APPLE__
#endif
