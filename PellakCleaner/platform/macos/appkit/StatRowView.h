#pragma once

#import <AppKit/AppKit.h>

#include "platform/DesktopHost.h"

// For .mm files only.

/// One reading in the status menu: symbol, title, value, second line, and a bar or one small bar
/// for each core.
@interface StatRowView : NSView

- (instancetype)initWithRow:(const pellak::StatRow&)riga NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithFrame:(NSRect)frame NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder*)coder NS_UNAVAILABLE;

/// The reading in words.
@property(nonatomic, readonly) NSString* testo;

@end
