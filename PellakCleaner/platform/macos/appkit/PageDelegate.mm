#include "platform/macos/appkit/PageDelegate.h"

#include <memory>
#include <utility>

#include "platform/macos/Bridging.h"

namespace pellak::native {
namespace {

/// A question of the page's script, which waits until it is answered. One that is dropped counts
/// as refused: the view insists on an answer to each.
class Question {
 public:
  explicit Question(void (^answer)(BOOL)) : answer_([answer copy]) {}
  ~Question() { give(false); }
  Question(const Question&) = delete;
  Question& operator=(const Question&) = delete;

  void give(bool yes) {
    if (answer_ == nil) return;
    void (^const answer)(BOOL) = std::exchange(answer_, nil);
    answer(yes ? YES : NO);
  }

 private:
  void (^answer_)(BOOL);
};

NSString* withoutFragment(NSURL* url) {
  NSString* text = url.absoluteString;
  const NSRange mark = [text rangeOfString:@"#"];
  return mark.location == NSNotFound ? text : [text substringToIndex:mark.location];
}

/// A place on the page that is shown.
bool within(NSURL* url, NSURL* page) {
  return url.fragment != nil && page != nil &&
         [withoutFragment(url) isEqualToString:withoutFragment(page)];
}

}  // namespace

std::string jsonOf(id value) {
  // Only containers can be checked, and what can't be written throws.
  if (value == nil || ![NSJSONSerialization isValidJSONObject:@[ value ]]) return {};
  NSData* json = [NSJSONSerialization dataWithJSONObject:value
                                                 options:NSJSONWritingFragmentsAllowed
                                                   error:nullptr];
  if (json == nil) return {};
  return {static_cast<const char*>(json.bytes), json.length};
}

}  // namespace pellak::native

@implementation PellakPageDelegate

- (void)userContentController:(WKUserContentController*)controller
      didReceiveScriptMessage:(WKScriptMessage*)message {
  if (self.eventi == nullptr) return;
  const std::string json = pellak::native::jsonOf(message.body);
  if (!json.empty()) self.eventi->message(pellak::native::bytesOf(message.name), json);
}

- (void)webView:(WKWebView*)view
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler {
  const auto question = std::make_shared<pellak::native::Question>(^(BOOL /*yes*/) {
    completionHandler();
  });
  if (self.eventi == nullptr) return;
  self.eventi->scriptAlert(pellak::native::bytesOf(message), [question] { question->give(true); });
}

- (void)webView:(WKWebView*)view
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL result))completionHandler {
  const auto question = std::make_shared<pellak::native::Question>(completionHandler);
  if (self.eventi == nullptr) return;
  self.eventi->scriptConfirm(pellak::native::bytesOf(message),
                             [question](bool yes) { question->give(yes); });
}

/// Our own load passes once; after it only places within the page.
- (void)webView:(WKWebView*)view
    decidePolicyForNavigationAction:(WKNavigationAction*)action
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
  bool ours = false;
  if (action.targetFrame.mainFrame) {
    const bool load = self.caricamento && action.navigationType == WKNavigationTypeOther;
    if (load) self.caricamento = NO;
    ours = load || pellak::native::within(action.request.URL, view.URL);
  }
  decisionHandler(ours ? WKNavigationActionPolicyAllow : WKNavigationActionPolicyCancel);
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)view {
  if (self.eventi != nullptr) self.eventi->pageGone();
}

@end
