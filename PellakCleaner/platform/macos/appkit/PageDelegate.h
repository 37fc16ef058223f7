#pragma once

#import <WebKit/WebKit.h>
#include <string>

#include "platform/DesktopHost.h"

// For .mm files only.

/// Hands on what the page's view reports and asks. The view may keep it longer than the window
/// lives, so whoever made it clears `eventi`; from then on nothing is handed on.
@interface PellakPageDelegate
    : NSObject <WKScriptMessageHandler, WKUIDelegate, WKNavigationDelegate>

@property(nonatomic, assign) pellak::DesktopEvents* eventi;
/// A load of ours is on its way to the check of navigations.
@property(nonatomic, assign) BOOL caricamento;

@end

namespace pellak::native {

/// A value of the page as JSON; empty when there is no such.
std::string jsonOf(id value);

}  // namespace pellak::native
