#include "platform/linux/gtk/WebViewGtk.h"

#include <utility>
#include <webkit2/webkit2.h>

#include "platform/linux/GlibPtr.h"
#include "platform/linux/gtk/ScriptDialogGtk.h"

namespace pellak::native {
namespace {

WebKitWebView* webView(GtkWidget* widget) { return WEBKIT_WEB_VIEW(widget); }

WebKitSettings* plainSettings() {
  return webkit_settings_new_with_settings(
      "enable-developer-extras", 0, "enable-dns-prefetching", 0, "enable-fullscreen", 0,
      "enable-media", 0, "enable-page-cache", 0, "enable-webaudio", 0, "enable-webgl", 0,
      "javascript-can-open-windows-automatically", 0, nullptr);
}

std::string beforeFragment(const char* uri) {
  const std::string text(uri == nullptr ? "" : uri);
  return text.substr(0, text.find('#'));
}

std::string textOf(JSCValue* value) {
  if (value == nullptr) return {};
  const bool plain = jsc_value_is_string(value) != 0 || jsc_value_is_undefined(value) != 0;
  GlibText text(plain ? jsc_value_to_string(value) : jsc_value_to_json(value, 0));
  if (text == nullptr) text.reset(jsc_value_to_string(value));
  return text == nullptr ? std::string() : std::string(text.get());
}

using Answer = std::function<void(Result<std::string>)>;

void onCallDone(GObject* view, GAsyncResult* outcome, void* raw) {
  const std::unique_ptr<Answer> fatto(static_cast<Answer*>(raw));
  GError* reason = nullptr;
  const GlibObject<JSCValue> value(webkit_web_view_call_async_javascript_function_finish(
      WEBKIT_WEB_VIEW(view), outcome, &reason));
  const GlibError error(reason);
  if (value != nullptr) return (*fatto)(textOf(value.get()));
  const bool cancelled = g_error_matches(reason, G_IO_ERROR, G_IO_ERROR_CANCELLED) != 0;
  (*fatto)(Error{cancelled ? ErrorKind::cancelled : ErrorKind::failed, 0,
                 reason == nullptr ? "no answer" : reason->message});
}

int refuse() { return 1; }

int refuseChooser(WebKitWebView* /*view*/, WebKitFileChooserRequest* request, void* /*data*/) {
  webkit_file_chooser_request_cancel(request);
  return 1;
}

int refusePermission(WebKitWebView* /*view*/, WebKitPermissionRequest* request, void* /*data*/) {
  webkit_permission_request_deny(request);
  return 1;
}

void refuseDownload(WebKitWebContext* /*context*/, WebKitDownload* download, void* /*data*/) {
  webkit_download_cancel(download);
}

GtkWidget* refuseWindow() { return nullptr; }

}  // namespace

struct WebViewGtk::Channel {
  DesktopEvents& eventi;
  std::string nome;
};

/// What WebKit calls.
struct WebViewGtk::Handlers {
  static void onMessage(WebKitUserContentManager* /*manager*/, WebKitJavascriptResult* body,
                        void* raw) {
    const auto* canale = static_cast<Channel*>(raw);
    const GlibText json(jsc_value_to_json(webkit_javascript_result_get_js_value(body), 0));
    if (json != nullptr) canale->eventi.message(canale->nome, json.get());
  }

  /// Our own load passes once; after it only places within the page.
  static int onPolicy(WebKitWebView* /*view*/, WebKitPolicyDecision* decision,
                      WebKitPolicyDecisionType type, void* raw) {
    auto* self = static_cast<WebViewGtk*>(raw);
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) return 0;
    WebKitNavigationAction* action = webkit_navigation_policy_decision_get_navigation_action(
        WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    const char* uri = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    const bool within = uri != nullptr && std::string(uri).find('#') != std::string::npos;
    const bool ours = beforeFragment(uri) == self->pagina_ &&
                      type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION &&
                      (std::exchange(self->caricamento_, false) || within);
    if (ours) {
      webkit_policy_decision_use(decision);
    } else {
      webkit_policy_decision_ignore(decision);
    }
    return 1;
  }

  static int onDialog(WebKitWebView* /*view*/, WebKitScriptDialog* dialog, void* raw) {
    auto* self = static_cast<WebViewGtk*>(raw);
    return answerLater(dialog, self->eventi_) ? 1 : 0;
  }

  static void onGone(WebKitWebView* /*view*/, WebKitWebProcessTerminationReason reason, void* raw) {
    auto* self = static_cast<WebViewGtk*>(raw);
    if (reason != WEBKIT_WEB_PROCESS_TERMINATED_BY_API) self->eventi_.pageGone();
  }
};

WebViewGtk::WebViewGtk(DesktopEvents& eventi, const std::vector<std::string>& canali)
    : eventi_(eventi), gone_(g_cancellable_new()) {
  const GlibObject<WebKitWebContext> context(webkit_web_context_new_ephemeral());
  webkit_web_context_set_cache_model(context.get(), WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
  const GlibObject<WebKitUserContentManager> manager(webkit_user_content_manager_new());
  const GlibObject<WebKitSettings> settings(plainSettings());
  view_ = GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context.get(),
                                  "user-content-manager", manager.get(), "settings", settings.get(),
                                  nullptr));
  g_signal_connect(context.get(), "download-started", G_CALLBACK(refuseDownload), nullptr);
  listen(canali);
}

WebViewGtk::~WebViewGtk() {
  g_cancellable_cancel(gone_);
  g_object_unref(gone_);
  WebKitUserContentManager* manager = webkit_web_view_get_user_content_manager(webView(view_));
  for (const auto& canale : canali_) g_signal_handlers_disconnect_by_data(manager, canale.get());
  g_signal_handlers_disconnect_by_data(view_, this);
  g_object_unref(view_);
}

void WebViewGtk::listen(const std::vector<std::string>& canali) {
  g_object_ref_sink(view_);
  g_signal_connect(view_, "decide-policy", G_CALLBACK(Handlers::onPolicy), this);
  g_signal_connect(view_, "script-dialog", G_CALLBACK(Handlers::onDialog), this);
  g_signal_connect(view_, "web-process-terminated", G_CALLBACK(Handlers::onGone), this);
  for (const char* signal : {"context-menu", "print", "authenticate", "enter-fullscreen"}) {
    g_signal_connect(view_, signal, G_CALLBACK(refuse), nullptr);
  }
  g_signal_connect(view_, "create", G_CALLBACK(refuseWindow), nullptr);
  g_signal_connect(view_, "run-file-chooser", G_CALLBACK(refuseChooser), nullptr);
  g_signal_connect(view_, "permission-request", G_CALLBACK(refusePermission), nullptr);

  WebKitUserContentManager* manager = webkit_web_view_get_user_content_manager(webView(view_));
  for (const std::string& nome : canali) {
    canali_.push_back(std::make_unique<Channel>(Channel{eventi_, nome}));
    g_signal_connect(manager, ("script-message-received::" + nome).c_str(),
                     G_CALLBACK(Handlers::onMessage), canali_.back().get());
    webkit_user_content_manager_register_script_message_handler(manager, nome.c_str());
  }
}

void WebViewGtk::loadHtml(const std::string& testo) {
  pagina_ = "about:blank";
  caricamento_ = true;
  webkit_web_view_load_html(webView(view_), testo.c_str(), nullptr);
}

void WebViewGtk::loadFile(const std::string& percorso) {
  const GlibText uri(g_filename_to_uri(percorso.c_str(), nullptr, nullptr));
  if (uri == nullptr) return;
  pagina_ = uri.get();
  caricamento_ = true;
  webkit_web_view_load_uri(webView(view_), uri.get());
}

void WebViewGtk::evaluate(const std::string& script) {
  webkit_web_view_evaluate_javascript(webView(view_), script.data(),
                                      static_cast<gssize>(script.size()), nullptr, nullptr, gone_,
                                      nullptr, nullptr);
}

void WebViewGtk::callAsync(const std::string& corpo, Answer fatto) {
  auto kept = std::make_unique<Answer>(std::move(fatto));
  webkit_web_view_call_async_javascript_function(
      webView(view_), corpo.data(), static_cast<gssize>(corpo.size()), nullptr, nullptr, nullptr,
      gone_, onCallDone, kept.release());
}

}  // namespace pellak::native
