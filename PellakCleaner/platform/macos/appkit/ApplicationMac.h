#pragma once

#import <AppKit/AppKit.h>

// For .mm files only.

/// Leaves its event loop when asked to quit, instead of ending the process: what is under way
/// finishes in order. That is so for the Dock, for scripts and for the end of the session alike.
@interface PellakApplication : NSApplication

/// Called for every wish to quit; without it the process ends.
@property(nonatomic, copy) void (^onTerminate)(void);

@end

/// Hands on what the system tells the application.
@interface PellakApplicationDelegate : NSObject <NSApplicationDelegate>

@property(nonatomic, copy) void (^onLaunched)(void);
@property(nonatomic, copy) void (^onReopened)(void);
@property(nonatomic, copy) void (^onActivated)(void);

@end
