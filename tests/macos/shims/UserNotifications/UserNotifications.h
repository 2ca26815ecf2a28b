#pragma once

// The one declaration of the framework that the program uses.

#import <Foundation/Foundation.h>

@protocol UNUserNotificationCenterDelegate <NSObject>
@end
