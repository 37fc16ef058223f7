#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"

using GtkWidget = struct _GtkWidget;
using GCancellable = struct _GCancellable;

namespace pellak::native {

/// The view that shows our page and nothing else: it can't be led away from it, opens no further
/// window, loads and keeps nothing on disk. Main thread.
class WebViewGtk {
 public:
  /// `eventi` outlives it. The widget is floating until a container takes it.
  WebViewGtk(DesktopEvents& eventi, const std::vector<std::string>& canali);
  ~WebViewGtk();
  WebViewGtk(const WebViewGtk&) = delete;
  WebViewGtk& operator=(const WebViewGtk&) = delete;

  GtkWidget* widget() const { return view_; }

  void loadHtml(const std::string& testo);
  void loadFile(const std::string& percorso);
  void evaluate(const std::string& script);
  void callAsync(const std::string& corpo, std::function<void(Result<std::string>)> fatto);

 private:
  struct Channel;
  struct Handlers;

  void listen(const std::vector<std::string>& canali);

  DesktopEvents& eventi_;
  std::vector<std::unique_ptr<Channel>> canali_;
  GtkWidget* view_ = nullptr;
  GCancellable* gone_;        ///< ends the calls into the page with the view
  std::string pagina_;        ///< address of what is loaded
  bool caricamento_ = false;  ///< a load of ours is on its way to the policy check
};

}  // namespace pellak::native
