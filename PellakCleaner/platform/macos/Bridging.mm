#include "platform/macos/Bridging.h"

namespace pellak::native {

NSString* textOf(std::string_view bytes) {
  return [[NSString alloc] initWithBytes:bytes.data()
                                  length:bytes.size()
                                encoding:NSUTF8StringEncoding];
}

NSString* shownText(std::string_view bytes) {
  NSString* text = textOf(bytes);
  if (text != nil) return text;
  // Every byte is a character of this encoding.
  text = [[NSString alloc] initWithBytes:bytes.data()
                                  length:bytes.size()
                                encoding:NSISOLatin1StringEncoding];
  return text != nil ? text : @"";
}

std::string bytesOf(NSString* text) {
  const char* utf8 = text.UTF8String;
  return utf8 == nullptr ? std::string() : std::string(utf8);
}

NSURL* fileUrlOf(std::string_view percorso) {
  const auto* bytes = reinterpret_cast<const UInt8*>(percorso.data());
  return CFBridgingRelease(CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, bytes, static_cast<CFIndex>(percorso.size()), false));
}

std::string pathOf(NSURL* url) {
  const char* path = url.fileURL ? url.fileSystemRepresentation : nullptr;
  return path == nullptr ? std::string() : std::string(path);
}

}  // namespace pellak::native
