#include <gtk/gtk.h>
#include <thread>

#include "platform/DesktopHostGtkScene.h"
#include "platform/linux/GlibPtr.h"

namespace pellak::native {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

const std::string kPage =
    "<!doctype html><meta charset=utf-8><body>ciao<script>"
    "webkit.messageHandlers.pellak.postMessage('pronta')</script>";

class DesktopHostGtkTest : public DesktopHostGtkScene {};

TEST_F(DesktopHostGtkTest, RunsTasksInOrderAndTimersOnTime) {
  std::string order;
  const auto begin = std::chrono::steady_clock::now();
  std::thread other;
  const int stato = play([&] {
    order += 'a';
    host().post([&] {
      order += 'c';
      host().post([&] { order += 'e'; });
    });
    host().post([&] { order += 'd'; });
    other = std::thread([&] { host().post([&] { order += '+'; }); });
    MainLoop::TimerId never = host().after(0.02, [&] { order += "never"; });
    host().cancel(never);
    auto count = std::make_shared<int>(0);
    auto timer = std::make_shared<MainLoop::TimerId>(0);
    *timer = host().every(0.03, [&, count, timer] {
      order += 't';
      if (++*count < 3) return;
      host().cancel(*timer);
      host().after(0.2, [&] {
        order += 'z';
        host().terminate(7);
        host().post([&] { order += "too late"; });
      });
    });
    order += 'b';
  });
  other.join();
  EXPECT_EQ(stato, 7);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
  EXPECT_EQ(std::erase(order, '+'), 1U);
  EXPECT_EQ(order, "abcdetttz");
}

TEST_F(DesktopHostGtkTest, PageAndApplicationTalkToEachOther) {
  std::string large = kPage + "<!--";
  large.append(600'000, 'x').append("-->");
  std::vector<std::string> answers;
  const auto keep = [&](const Result<std::string>& answer) {
    answers.push_back(answer.ok() ? answer.value() : "error: " + answer.error().text);
  };
  const int stato = playPage(large, [&] {
    const std::string literal = "\"\\u2028\\\"\\\\ è 😀\"";
    host().evaluate("webkit.messageHandlers.api.postMessage({id: 7, path: " + literal + "})");
    next("api {\"id\":7,\"path\":\"\u2028\\\"\\\\ è 😀\"}", [&] {
      host().evaluate("this is no script");
      host().evaluate("webkit.messageHandlers.pellak.postMessage(undefined)");
      host().callAsync("await null; return 'testo \"è\"'", keep);
      host().callAsync("return {a: [1, 2.5, null]}", keep);
      host().callAsync("", keep);
      host().callAsync("throw new Error('guasto')", keep);
      host().callAsync("return document.documentElement.outerHTML.length", [&](const auto& answer) {
        keep(answer);
        finish();
      });
    });
  });
  EXPECT_EQ(stato, 0);
  ASSERT_EQ(answers.size(), 5U);
  EXPECT_EQ(answers[0], "testo \"è\"");
  EXPECT_EQ(answers[1], "{\"a\":[1,2.5,null]}");
  EXPECT_EQ(answers[2], "undefined");
  EXPECT_THAT(answers[3], testing::HasSubstr("guasto"));
  EXPECT_GT(std::stoi(answers[4]), 600'000);
}

TEST_F(DesktopHostGtkTest, AScriptWaitsForAnAnswerThatComesLater) {
  const int stato = playPage(kPage, [&] {
    next("confirm Davvero?", [&] {
      // The loop goes on while the page waits.
      host().after(0.1, [&] { events.confirmed(true); });
      next("confirm E ora?", [&] {
        events.confirmed = nullptr;  // dropped: counts as no
        next("alert Fatto", [&] { host().after(0.05, [&] { events.alerted(); }); });
      });
    });
    host().callAsync(
        "const a = confirm('Davvero?'), b = confirm('E ora?');"
        "alert('Fatto'); return `${a} ${b} ${prompt('nulla')}`",
        [&](const Result<std::string>& answer) {
          EXPECT_EQ(answer.value(), "true false null");
          finish();
        });
  });
  EXPECT_EQ(stato, 0);
}

TEST_F(DesktopHostGtkTest, ThePageCantBeLedAway) {
  const int stato = playPage(kPage + "<p id=qui>", [&] {
    host().evaluate(
        "open('about:blank'); location.reload(); location = 'about:blank';"
        "location = 'https://example.invalid/'; location = 'file:///etc/passwd';"
        "location.hash = 'qui'; history.back()");
    host().after(1, [&] {
      host().callAsync("return document.body.firstChild.textContent + location.href",
                       [&](const Result<std::string>& answer) {
                         EXPECT_THAT(answer.value(), testing::StartsWith("ciaoabout:blank"));
                         finish();
                       });
    });
  });
  EXPECT_EQ(stato, 0);
  EXPECT_THAT(events.heard, Not(Contains("page gone")));
}

TEST_F(DesktopHostGtkTest, ClosingHidesAndReportsOnceAndThePageLivesOn) {
  std::string size;
  const int stato = playPage(kPage, [&] {
    host().callAsync("return innerWidth + 'x' + innerHeight",
                     [&](const Result<std::string>& answer) { size = answer.value(); });
    EXPECT_TRUE(host().windowVisible());
    host().evaluate("window.kept = 42");
    host().closeWindow();
    host().closeWindow();
    EXPECT_FALSE(host().windowVisible());
    host().after(0.3, [&] {
      host().presentWindow();
      EXPECT_TRUE(host().windowVisible());
      host().callAsync("return window.kept", [&](const Result<std::string>& answer) {
        EXPECT_EQ(answer.value(), "42");
        host().setCloseHides(false);
        host().closeWindow();
        EXPECT_FALSE(host().windowVisible());
        finish();
      });
    });
  });
  EXPECT_EQ(stato, 0);
  EXPECT_EQ(size, "1000x600");
  EXPECT_THAT(events.heard, ElementsAre("pellak \"pronta\"", "will close", "will close"));
}

/// The visible top-level window of a kind.
template <class Kind>
GtkWidget* shown(Kind isKind) {
  GList* windows = gtk_window_list_toplevels();
  GtkWidget* found = nullptr;
  for (const GList* at = windows; at != nullptr; at = at->next) {
    auto* window = GTK_WIDGET(at->data);
    if (isKind(window) && gtk_widget_get_visible(window) != 0) found = window;
  }
  g_list_free(windows);
  return found;
}

TEST_F(DesktopHostGtkTest, TheMenuKeyOpensTheMenuAboveThePage) {
  const auto press = [](GtkWidget* window, guint key) {
    GdkEvent* event = gdk_event_new(GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->key.keyval = key;
    GdkDisplay* display = gdk_display_get_default();
    gdk_event_set_device(event, gdk_seat_get_keyboard(gdk_display_get_default_seat(display)));
    GdkKeymapKey* keys = nullptr;
    int count = 0;
    gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(display), key, &keys, &count);
    event->key.hardware_keycode = static_cast<guint16>(keys[0].keycode);
    g_free(keys);
    gtk_main_do_event(event);
    gdk_event_free(event);
  };
  const auto isMenu = [](GtkWidget* window) {
    return GTK_IS_MENU(gtk_bin_get_child(GTK_BIN(window))) != 0;
  };
  const int stato = playPage(kPage, [&] {
    MenuEntry about;
    about.titolo = "Informazioni";
    about.azione = MenuAction::about;
    host().setMainMenu({about});
    press(shown([](GtkWidget* window) {
            return gtk_window_get_titlebar(GTK_WINDOW(window)) != nullptr;
          }),
          GDK_KEY_F10);
    host().every(0.1, [&] {
      if (GtkWidget* menu = shown(isMenu)) press(menu, GDK_KEY_Return);
    });
    next("menu " + std::to_string(static_cast<int>(MenuAction::about)), [&] { finish(); });
  });
  EXPECT_EQ(stato, 0);
}

TEST_F(DesktopHostGtkTest, DialogsAnswerOnceWhateverClosesThem) {
  std::vector<std::size_t> chosen;
  std::vector<std::string> folders = {"untouched"};
  const auto keep = [&](std::size_t which) { chosen.push_back(which); };
  const auto respond = [](int response) {
    GtkWidget* dialog = shown([](GtkWidget* window) { return GTK_IS_DIALOG(window) != 0; });
    ASSERT_NE(dialog, nullptr);
    gtk_dialog_response(GTK_DIALOG(dialog), response);
  };
  const std::string folder = home / "a \xff";
  std::filesystem::create_directory(folder);
  const int stato = play([&] {
    host().alert({"Titolo <b>", "testo \xff %s", {"OK", "Annulla"}}, keep);
    respond(0);
    host().alert({"Titolo", "", {"OK", "Annulla"}}, keep);
    respond(GTK_RESPONSE_DELETE_EVENT);
    host().showAbout({"Pellak Cleaner", "Versione 1", "Riga\nRiga", home / "manca.png", "x:"});
    host().showAbout({"Pellak Cleaner", "Versione 1", "", "", ""});
    respond(GTK_RESPONSE_DELETE_EVENT);
    EXPECT_EQ(shown([](GtkWidget* window) { return GTK_IS_DIALOG(window) != 0; }), nullptr);
    host().chooseFolders("Escludi", "Scegli", [&](std::vector<std::string> answer) {
      folders = std::move(answer);
      finish();
    });
    auto isChooser = [](GtkWidget* window) { return GTK_IS_FILE_CHOOSER_DIALOG(window) != 0; };
    GtkWidget* chooser = shown(isChooser);
    ASSERT_NE(chooser, nullptr);
    gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), folder.c_str());
    // Once it has read the folder.
    auto timer = std::make_shared<MainLoop::TimerId>(0);
    *timer = host().every(0.1, [&, chooser, timer] {
      const GlibText chosenNow(gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser)));
      if (chosenNow == nullptr || folder != chosenNow.get()) return;
      host().cancel(*timer);
      respond(GTK_RESPONSE_ACCEPT);
    });
  });
  EXPECT_EQ(stato, 0);
  EXPECT_THAT(chosen, ElementsAre(0U, 1U));
  EXPECT_THAT(folders, ElementsAre(folder));
}

}  // namespace
}  // namespace pellak::native
