#pragma once

// Every line of the preprocessor here but the first two is one that a platform type must not contain.
#include "platform/Date.hpp"
#include "app/App.hpp"
#include <glib.h>
#include <fontconfig/fontconfig.h>
#import <Cocoa/Cocoa.h>
