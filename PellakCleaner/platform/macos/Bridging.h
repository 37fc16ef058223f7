#pragma once

#import <Foundation/Foundation.h>
#include <string>
#include <string_view>

// For .mm files only.
namespace pellak::native {

/// nil when the bytes are no valid UTF-8.
NSString* textOf(std::string_view bytes);

/// For showing: never nil, whatever the bytes are.
NSString* shownText(std::string_view bytes);

/// Empty for nil, and for text that has no UTF-8.
std::string bytesOf(NSString* text);

/// Of a path: from bytes, not from text, since a name need not be valid Unicode. nil for an empty
/// path.
NSURL* fileUrlOf(std::string_view percorso);

/// The path of a file's URL; empty when it has none.
std::string pathOf(NSURL* url);

}  // namespace pellak::native
