#include "platform/macos/appkit/DialogsMac.h"

#import <AppKit/AppKit.h>
#include <memory>
#include <utility>

#include "platform/macos/Bridging.h"

namespace pellak::native {
namespace {

NSString* const kEscape = @"\033";

/// While it lives, Escape presses the only button of an alert, which answers to Return already.
class EscapeAnswers {
 public:
  explicit EscapeAnswers(NSAlert* alert) {
    if (alert.buttons.count != 1) return;
    NSButton* only = alert.buttons.firstObject;
    NSWindow* window = alert.window;
    monitor_ = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                     handler:^NSEvent*(NSEvent* event) {
                                                       const bool escape =
                                                           event.window == window &&
                                                           [event.charactersIgnoringModifiers
                                                               isEqualToString:kEscape];
                                                       if (!escape) return event;
                                                       [only performClick:nil];
                                                       return nil;
                                                     }];
  }
  ~EscapeAnswers() {
    if (monitor_ != nil) [NSEvent removeMonitor:monitor_];
  }
  EscapeAnswers(const EscapeAnswers&) = delete;
  EscapeAnswers& operator=(const EscapeAnswers&) = delete;

 private:
  id monitor_ = nil;
};

NSAlert* alertOf(const AlertPlan& avviso) {
  NSAlert* alert = [[NSAlert alloc] init];
  alert.messageText = shownText(avviso.messaggio);
  alert.informativeText = shownText(avviso.informazione);
  for (const std::string& pulsante : avviso.pulsanti) {
    [alert addButtonWithTitle:shownText(pulsante)];
  }
  if (avviso.pulsanti.size() > 1) alert.buttons.lastObject.keyEquivalent = kEscape;
  return alert;
}

}  // namespace

void showAlert(const AlertPlan& avviso, std::function<void(std::size_t)> scelto) {
  NSAlert* alert = alertOf(avviso);
  const std::size_t last = avviso.pulsanti.empty() ? 0 : avviso.pulsanti.size() - 1;
  const auto answer = std::make_shared<std::function<void(std::size_t)>>(std::move(scelto));
  // In a turn of its own, and not on the main queue: the queue waits for the task that shows the
  // alert, and with it everything posted meanwhile would.
  [NSRunLoop.mainRunLoop performInModes:@[ NSRunLoopCommonModes ]
                                  block:^{
                                    [NSApp activateIgnoringOtherApps:YES];
                                    const EscapeAnswers escape(alert);
                                    const NSModalResponse button = [alert runModal];
                                    const NSInteger index = button - NSAlertFirstButtonReturn;
                                    const bool chosen =
                                        index >= 0 && static_cast<std::size_t>(index) <= last;
                                    (*answer)(chosen ? static_cast<std::size_t>(index) : last);
                                  }];
}

void chooseFolders(const std::string& pulsante, const std::string& messaggio,
                   std::function<void(std::vector<std::string>)> scelte) {
  const auto answer =
      std::make_shared<std::function<void(std::vector<std::string>)>>(std::move(scelte));
  NSOpenPanel* panel = [NSOpenPanel openPanel];
  panel.canChooseDirectories = YES;
  panel.canChooseFiles = NO;
  panel.allowsMultipleSelection = YES;
  panel.prompt = shownText(pulsante);
  panel.message = shownText(messaggio);
  [panel beginWithCompletionHandler:^(NSModalResponse response) {
    std::vector<std::string> folders;
    if (response == NSModalResponseOK) {
      for (NSURL* url in panel.URLs) folders.push_back(pathOf(url));
    }
    (*answer)(std::move(folders));
  }];
}

}  // namespace pellak::native
