#include "platform/macos/SoundPlayerMac.h"

#import <AppKit/AppKit.h>

namespace pellak::native {
namespace {

NSString* const kSound =
    @"/System/Library/Components/CoreAudio.component/Contents/SharedSupport/SystemSounds/finder/"
    @"move to trash.aif";

}  // namespace

void SoundPlayerMac::movedToTrash() {
  dispatch_async(dispatch_get_main_queue(), ^{
    // Kept here: a sound that nobody holds falls silent.
    static NSSound* sound = [[NSSound alloc] initWithContentsOfFile:kSound byReference:YES];
    [sound play];
  });
}

}  // namespace pellak::native
