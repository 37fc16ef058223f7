#include "platform/macos/appkit/WebViewMac.h"

#import <WebKit/WebKit.h>
#include <utility>

#include "platform/macos/Bridging.h"
#include "platform/macos/appkit/PageDelegate.h"

/// Without the view's own menu, which speaks of pages and reloading.
@interface PellakWebView : WKWebView
@end

@implementation PellakWebView

- (void)willOpenMenu:(NSMenu*)menu withEvent:(NSEvent*)event {
  [super willOpenMenu:menu withEvent:event];
  [menu removeAllItems];
}

@end

namespace pellak::native {
namespace {

using Answer = std::function<void(Result<std::string>)>;

/// Text as it is, everything else as JSON.
std::string resultText(id value) {
  if (value == nil) return "undefined";
  if ([value isKindOfClass:NSString.class]) return bytesOf(value);
  std::string json = jsonOf(value);
  return json.empty() ? bytesOf([value description]) : json;
}

WKWebViewConfiguration* configuration(PellakPageDelegate* delegate,
                                      const std::vector<std::string>& canali) {
  WKWebViewConfiguration* plan = [[WKWebViewConfiguration alloc] init];
  plan.websiteDataStore = WKWebsiteDataStore.nonPersistentDataStore;
  plan.preferences.javaScriptCanOpenWindowsAutomatically = NO;
  for (const std::string& nome : canali) {
    [plan.userContentController addScriptMessageHandler:delegate name:shownText(nome)];
  }
  return plan;
}

}  // namespace

struct WebViewMac::Parts {
  PellakPageDelegate* delegate;
  PellakWebView* view;
  std::vector<std::string> canali;
};

WebViewMac::WebViewMac(DesktopEvents& eventi, const std::vector<std::string>& canali)
    : parts_(std::make_unique<Parts>()) {
  parts_->delegate = [[PellakPageDelegate alloc] init];
  parts_->delegate.eventi = &eventi;
  parts_->canali = canali;
  parts_->view = [[PellakWebView alloc] initWithFrame:NSZeroRect
                                        configuration:configuration(parts_->delegate, canali)];
  parts_->view.UIDelegate = parts_->delegate;
  parts_->view.navigationDelegate = parts_->delegate;
}

WebViewMac::~WebViewMac() {
  parts_->delegate.eventi = nullptr;
  parts_->view.UIDelegate = nil;
  parts_->view.navigationDelegate = nil;
  // The view's controller keeps its handlers.
  WKUserContentController* controller = parts_->view.configuration.userContentController;
  for (const std::string& nome : parts_->canali) {
    [controller removeScriptMessageHandlerForName:shownText(nome)];
  }
}

NSView* WebViewMac::view() const { return parts_->view; }

void WebViewMac::loadHtml(const std::string& testo) {
  parts_->delegate.caricamento = YES;
  [parts_->view loadHTMLString:shownText(testo) baseURL:nil];
}

void WebViewMac::loadFile(const std::string& percorso, const std::string& cartella) {
  NSURL* file = fileUrlOf(percorso);
  NSURL* folder = fileUrlOf(cartella);
  if (file == nil || folder == nil) return;
  parts_->delegate.caricamento = YES;
  [parts_->view loadFileURL:file allowingReadAccessToURL:folder];
}

void WebViewMac::evaluate(const std::string& script) {
  [parts_->view evaluateJavaScript:shownText(script) completionHandler:nil];
}

void WebViewMac::callAsync(const std::string& corpo, Answer fatto) {
  const auto kept = std::make_shared<Answer>(std::move(fatto));
  [parts_->view callAsyncJavaScript:shownText(corpo)
                          arguments:nil
                            inFrame:nil
                     inContentWorld:WKContentWorld.pageWorld
                  completionHandler:^(id value, NSError* error) {
                    if (error == nil) return (*kept)(resultText(value));
                    (*kept)(Error{ErrorKind::failed, 0, bytesOf(error.localizedDescription)});
                  }];
}

}  // namespace pellak::native
