#include <chrono>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sys/stat.h>
#include <thread>
#include <vector>

#include "platform/DesktopLinux.h"
#include "platform/linux/ApplicationsLinux.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/GlibPtr.h"
#include "platform/linux/RunningPrograms.h"
#include "platform/posix/ProcessLauncherPosix.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

constexpr unsigned kRed = 0xff0000ffU;
constexpr unsigned kGreen = 0x00ff00ffU;
constexpr unsigned kBlue = 0x0000ffffU;

class ApplicationsLinuxTest : public DesktopLinux {
 protected:
  void entry(const std::string& path, const std::string& lines) {
    fakes::scriviFile(home / path, "[Desktop Entry]\nType=Application\n" + lines);
  }

  /// An application "prova" with this icon.
  void withIcon(const std::string& icon) {
    entry("dati/applications/prova.desktop", "Name=Prova\nIcon=" + icon + "\n");
  }

  void png(const std::string& path, int width, int height, unsigned color) {
    std::filesystem::create_directories(std::filesystem::path(home / path).parent_path());
    const GlibObject<GdkPixbuf> image(gdk_pixbuf_new(GDK_COLORSPACE_RGB, 1, 8, width, height));
    gdk_pixbuf_fill(image.get(), color);
    ASSERT_TRUE(gdk_pixbuf_save(image.get(), (home / path).c_str(), "png", nullptr, nullptr));
  }

  struct Drawn {
    int width;
    int height;
    unsigned color;
    bool operator==(const Drawn&) const = default;
  };

  /// The icon of "prova" as a look at its PNG tells it; zeros when there is none.
  Drawn icon() {
    const Result<std::string> bytes = applications.iconPng("prova");
    if (!bytes) {
      EXPECT_EQ(bytes.error().kind, ErrorKind::missing);
      return {0, 0, 0};
    }
    EXPECT_TRUE(bytes->starts_with("\x89PNG"));
    const GlibObject<GdkPixbufLoader> loader(gdk_pixbuf_loader_new_with_type("png", nullptr));
    gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const unsigned char*>(bytes->data()),
                            bytes->size(), nullptr);
    gdk_pixbuf_loader_close(loader.get(), nullptr);
    const GdkPixbuf* image = gdk_pixbuf_loader_get_pixbuf(loader.get());
    const int width = gdk_pixbuf_get_width(image);
    const int height = gdk_pixbuf_get_height(image);
    const unsigned char* middle = gdk_pixbuf_read_pixels(image) +
                                  (height / 2) * gdk_pixbuf_get_rowstride(image) +
                                  (width / 2) * gdk_pixbuf_get_n_channels(image);
    return {width, height,
            unsigned{middle[0]} << 24U | unsigned{middle[1]} << 16U | unsigned{middle[2]} << 8U |
                0xffU};
  }

  std::string nameOf(const std::string& key) {
    const auto app = applications.find(key);
    return app ? app->name : std::string();
  }

  ApplicationsLinux applications;
};

TEST_F(ApplicationsLinuxTest, FindsByIdentifierPathProgramAndShownName) {
  const std::string program = script("scrivi", "");
  entry("sistema/applications/org.a.Scrivi.desktop",
        "Name=Writer\nName[it]=Scrittore\nName[de]=Schreiber\nExec=env A=/b scrivi %U\n");
  entry("sistema/applications/kde/uno.desktop", "Name=Uno\nNoDisplay=true\n");
  const auto app = applications.find("org.a.Scrivi");
  ASSERT_TRUE(app.has_value());
  EXPECT_EQ(app->id, "org.a.Scrivi");
  EXPECT_EQ(app->name, "Scrittore");
  EXPECT_EQ(app->path, home / "sistema/applications/org.a.Scrivi.desktop");
  EXPECT_EQ(app->executable, program);
  for (const std::string& key :
       {std::string("org.a.Scrivi.desktop"), app->path, program, std::string("Scrittore"),
        std::string("scrittore"), std::string("Writer")}) {
    EXPECT_EQ(nameOf(key), "Scrittore") << key;
  }
  EXPECT_EQ(nameOf("kde-uno"), "Uno");
  for (const char* key : {"", "Schreiber", "/", "org.a", "\xff", ".desktop"}) {
    EXPECT_EQ(nameOf(key), "") << key;
  }
}

TEST_F(ApplicationsLinuxTest, TheUsersEntriesComeFirstAndHiddenOnesHide) {
  entry("sistema/applications/uno.desktop", "Name=Di sistema\n");
  entry("sistema/applications/due.desktop", "Name=Due\n");
  entry("dati/applications/uno.desktop", "Name=Mia\n");
  entry("dati/applications/due.desktop", "Name=Due\nHidden=true\n");
  EXPECT_EQ(nameOf("uno"), "Mia");
  EXPECT_EQ(nameOf("due"), "");
  std::this_thread::sleep_for(20ms);
  entry("sistema/applications/tre.desktop", "Name=Tre\n");
  EXPECT_EQ(nameOf("tre"), "Tre") << "installed meanwhile";
  std::filesystem::remove_all(home / "dati");
  EXPECT_EQ(nameOf("uno"), "Di sistema");
}

TEST_F(ApplicationsLinuxTest, BrokenEntriesAreSkipped) {
  const std::string folder = "dati/applications/";
  fakes::scriviFile(home / folder + "binario.desktop", std::string("\0\xff\x01[", 4));
  fakes::scriviFile(home / folder + "vuoto.desktop", "");
  fakes::scriviFile(home / folder + "rete.desktop", "[Desktop Entry]\nType=Link\nName=Rete\n");
  entry(folder + "enorme.desktop", "Name=Enorme\nX-A=" + std::string(2U << 20U, 'x'));
  entry(folder + "latino.desktop", "Name=Caff\xe8\n");
  ASSERT_EQ(::mkfifo((home / folder + "fifo.desktop").c_str(), 0600), 0);
  std::filesystem::create_symlink(home / folder, home / folder + "anello");
  entry(folder + "sano.desktop", "Name=Sano\n");
  EXPECT_EQ(nameOf("sano"), "Sano");
  for (const char* key :
       {"binario", "vuoto", "rete", "enorme", "fifo", "Caff\xe8", "anello-sano"}) {
    EXPECT_FALSE(applications.find(key).has_value()) << key;
  }
  EXPECT_TRUE(applications.find("latino").has_value());
}

TEST_F(ApplicationsLinuxTest, TakesTheBestIconOfTheThemeThenOfItsParents) {
  fakes::scriviFile(home / "config/gtk-3.0/settings.ini",
                    "[Settings]\ngtk-icon-theme-name=Figlio\n");
  fakes::scriviFile(home / "dati/icons/Figlio/index.theme",
                    "[Icon Theme]\nName=Figlio\nInherits=Madre,Figlio,Manca\n"
                    "Directories=16,48,128,vettori,../../fuori\n"
                    "[16]\nSize=16\n[48]\nSize=48\n[128]\nSize=64\nScale=2\n"
                    "[vettori]\nSize=300\nMinSize=8\nMaxSize=512\nType=Scalable\n");
  fakes::scriviFile(home / "sistema/icons/Madre/index.theme",
                    "[Icon Theme]\nInherits=Figlio\nDirectories=64\n[64]\nSize=64\n");
  fakes::scriviFile(home / "sistema/icons/hicolor/index.theme",
                    "[Icon Theme]\nDirectories=64\n[64]\nSize=64\n");
  png("sistema/icons/hicolor/64/a.png", 64, 64, kBlue);
  png("sistema/icons/hicolor/64/solo.png", 64, 64, kBlue);
  png("sistema/icons/Madre/64/a.png", 64, 64, kGreen);
  png("sistema/icons/Madre/64/b.png", 64, 64, kGreen);
  png("dati/icons/Figlio/16/a.png", 16, 16, kBlue);
  png("dati/icons/Figlio/48/a.png", 48, 24, kRed);
  png("dati/icons/Figlio/128/c.png", 200, 100, kRed);
  png("dati/icons/Figlio/16/c.png", 16, 16, kBlue);
  png("sistema/pixmaps/sciolta.png", 20, 20, kGreen);
  png("dati/icons/Figlio/128/d.png", 128, 128, kRed);
  fakes::scriviFile(home / "dati/icons/Figlio/vettori/d.svg",
                    "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'>"
                    "<rect width='16' height='16' fill='#00ff00'/></svg>");

  const std::vector<std::pair<std::string, Drawn>> expected = {
      {"a", {48, 24, kRed}},
      {"a.png", {48, 24, kRed}},
      {"b", {64, 64, kGreen}},
      {"c", {64, 32, kRed}},
      {"d", {16, 16, kGreen}},
      {"solo", {64, 64, kBlue}},
      {"sciolta", {20, 20, kGreen}},
      {"manca", {0, 0, 0}},
      {"../16/a", {0, 0, 0}},
      {"", {0, 0, 0}},
      {home / "dati/icons/Figlio/16/c.png", {16, 16, kBlue}}};
  for (const auto& [name, drawn] : expected) {
    withIcon(name);
    std::this_thread::sleep_for(20ms);
    std::filesystem::last_write_time(home / "dati/applications",
                                     std::filesystem::file_time_type::clock::now());
    EXPECT_EQ(icon(), drawn) << name;
  }
}

TEST_F(ApplicationsLinuxTest, ImagesThatCanNotBeReadAreNoIcons) {
  const std::string image = home / "immagine";
  withIcon(image);
  png("buona.png", 8, 8, kRed);
  png("larga.png", 5000, 8, kRed);
  const std::string good = fakes::leggiFile(home / "buona.png");
  fakes::scriviFile(image, good);
  EXPECT_EQ(icon(), (Drawn{8, 8, kRed})) << "a sound one, for comparison";
  for (const std::string& content :
       {std::string(), std::string("testo"), good.substr(0, good.size() / 2), good.substr(0, 8),
        std::string("P6 60000 60000 255\nxxxx"), std::string(9U << 20U, 'x'),
        fakes::leggiFile(home / "larga.png")}) {
    fakes::scriviFile(image, content);
    EXPECT_EQ(icon(), (Drawn{0, 0, 0})) << content.substr(0, 60);
  }
  fakes::scriviFile(image,
                    "<svg xmlns='http://www.w3.org/2000/svg' width='90000' height='45000'>"
                    "<rect width='90000' height='45000' fill='#00ff00'/></svg>");
  EXPECT_EQ(icon(), (Drawn{64, 32, kGreen})) << "vectors may be of any size";
  std::filesystem::remove(image);
  std::filesystem::create_directory(image);
  EXPECT_EQ(icon(), (Drawn{0, 0, 0}));
  EXPECT_FALSE(applications.iconPng("nessuna").ok());
}

TEST_F(ApplicationsLinuxTest, SeesRealProgramsAndScriptsRunAndEnd) {
  std::filesystem::create_directories(home / "bin");
  const std::string program = home / "bin/pellak-finto";
  std::filesystem::copy_file("/bin/sleep", program);
  const std::string other = script("pellak-copione", "sleep 60; true");
  entry("dati/applications/finto.desktop", "Name=F\nExec=\"" + program + "\" 60\n");
  entry("dati/applications/copione.desktop", "Name=C\nExec=pellak-copione\n");
  entry("dati/applications/shell.desktop", "Name=S\nExec=/bin/sh -c \"sleep 1\"\n");
  const auto runs = [this](const char* id) { return applications.running(*applications.find(id)); };
  EXPECT_FALSE(runs("finto") || runs("copione"));

  posix::ProcessLauncherPosix launcher;
  auto first = launcher.start({program, {"60"}, ChildStreams::merged, {}});
  auto second = launcher.start({other, {}, ChildStreams::merged, {}});
  ASSERT_TRUE(first.ok() && second.ok());
  // A script is told by its command line, which is there once the new program has begun.
  for (int i = 0; i < 500 && !(runs("finto") && runs("copione")); ++i) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_TRUE(runs("finto") && runs("copione"));
  EXPECT_FALSE(runs("shell")) << "any shell is not this one";
  EXPECT_TRUE(applications.running({"", "", "", program})) << "not installed, but known by path";
  EXPECT_TRUE(applications.quit(*applications.find("finto")));
  EXPECT_TRUE((*first)->wait().signalled);
  EXPECT_FALSE((*second)->ended()) << "nobody asked the other one";
  (*second)->kill();
  (*second)->wait();
  EXPECT_FALSE(runs("finto") || runs("copione"));
}

TEST_F(ApplicationsLinuxTest, ProgramsOfExecLines) {
  const std::string tool = script("attrezzo", "");
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"/opt/x/app --new %U", "/opt/x/app"},
      {"attrezzo", tool},
      {"manca-davvero %f", "manca-davvero"},
      {"env A=/b C=d attrezzo -v", tool},
      {"pkexec \"/opt/a b/c\"", "/opt/a b/c"},
      {"/usr/bin/python3.11 -E /opt/y/main.py %U", "/opt/y/main.py"},
      {"sh -c \"cd /tmp; ./x\"", ""},
      {"java -jar programma.jar", ""},
      {"env", ""},
      {"\"aperto", ""},
      {"", ""}};
  for (const auto& [exec, program] : expected) {
    EXPECT_EQ(programOf(exec), program) << exec;
  }
}

TEST_F(ApplicationsLinuxTest, KnowsProcessesByUnitSandboxAndProgram) {
  DesktopEntry plain;
  plain.info.id = "org.a-b.App";
  plain.info.executable = "/opt/casa/avvio";
  DesktopEntry flatpak;
  flatpak.info.id = flatpak.flatpak = "org.f.App";
  DesktopEntry snap;
  snap.info.id = "volpe_volpe";
  snap.snap = "volpe";
  snap.info.executable = "/snap/bin/volpe";

  const auto in = [](const std::string& unit) {
    return RunningProgram{"/nowhere", "", {}, "0::/user.slice/app.slice/" + unit + "\n"};
  };
  EXPECT_TRUE(belongsTo(in("app-gnome-org.a\\x2db.App-4711.scope"), plain));
  EXPECT_TRUE(belongsTo(in("app-org.a\\x2db.App@autostart.service/figlio"), plain));
  EXPECT_FALSE(belongsTo(in("app-org.a\\x2db.Apposito-1.scope"), plain));
  EXPECT_FALSE(belongsTo(in("org.a-b.App-1.scope"), plain));
  EXPECT_FALSE(belongsTo(in("app-\\x2.scope/app-\\x/app-"), plain));
  EXPECT_TRUE(belongsTo(in("app-flatpak-org.f.App-12.scope"), flatpak));

  fakes::scriviFile(home / "root/.flatpak-info", "[Application]\nname=org.f.App\n");
  EXPECT_TRUE(belongsTo({home.percorso(), "/app/bin/x", {"x"}, ""}, flatpak));
  EXPECT_FALSE(belongsTo({home.percorso(), "/app/bin/x", {"x"}, ""}, plain));
  EXPECT_TRUE(belongsTo({"", "/snap/volpe/12/usr/lib/volpe", {"volpe"}, ""}, snap));
  EXPECT_FALSE(belongsTo({"", "/usr/bin/snap", {"snap", "run", "altro"}, ""}, snap));

  EXPECT_TRUE(belongsTo({"", "/opt/casa/bin-interno", {"x"}, ""}, plain)) << "its own folder";
  EXPECT_TRUE(belongsTo({"", "/usr/local/bin/avvio", {"x"}, ""}, plain)) << "same name";
  EXPECT_FALSE(belongsTo({"", "/opt/casale/x", {"x"}, ""}, plain));
  EXPECT_TRUE(
      belongsTo({"", "/usr/bin/python3.11", {"python3", "-E", "/opt/casa/avvio"}, ""}, plain));
  EXPECT_FALSE(belongsTo({"", "/usr/bin/python3.11", {"python3", "/opt/casa/altro"}, ""}, plain));
}

}  // namespace
}  // namespace pellak::native
