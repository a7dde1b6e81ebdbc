// The dialogs for real: GTK's file chooser on a virtual X server, worked by
// xdotool as a user would. Skipped, with the reason, only where no X server
// can be started.
#include <basicutils/environment/MFileDialog.h>
#include <basicutils/platform/Modules.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <string>

#include "XServer_test.h"

// GTK and the libraries under it keep caches for the life of the process;
// they are not this library's leaks. (The sanitizer's runtime looks this
// function up by name, so it must be visible.)
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libgtk-3\nleak:libgdk-3\nleak:libglib-2.0\nleak:libgobject-2.0\n"
           "leak:libgio-2.0\nleak:libfontconfig\nleak:libpango\nleak:libcairo\n"
           "leak:libharfbuzz\nleak:libX11\nleak:libatk\nleak:libgdk_pixbuf\nleak:libexpat\n"
           "leak:libpixman\nleak:libfreetype\nleak:libepoxy\nleak:libxkbcommon\n";
}

namespace basicutils {
namespace {

using environmenttest::DialogDriver;
using environmenttest::XServer;

// A dialog that starts on a chosen filter.
template <typename Base>
class Dialog : public Base {
  public:
    explicit Dialog(int filter) { this->mSelectedFilter = filter; }
};

class OnScreen : public ::testing::Test {
  protected:
    void TearDown() override { MFileDialog::sLastFile = MFileSpecWin(); }
    MFileSpecWin Spec(const std::string& name) const { return mFolder.Library(name).c_str(); }
    void SetUp() override {
#if defined(__SANITIZE_THREAD__)
        // GTK and GLib are not built for ThreadSanitizer: it cannot see their
        // own locking between their worker threads and reports races inside
        // them. The dialog runs on one thread; the other presets test it.
        GTEST_SKIP() << "GTK is not instrumented for ThreadSanitizer";
#endif
        if (!XServer::Why().empty()) GTEST_SKIP() << XServer::Why();
        HMODULE gtk = LoadLibraryW(u"libgtk-3.so.0");
        if (!gtk) GTEST_SKIP() << "GTK 3 is not installed (Debian package libgtk-3-0)";
        FreeLibrary(gtk);
        mFolder.Write("clip.mpg", "");
    }

    testing::TempFolder mFolder;
};

// Each dialog starts in the folder of the last file, which a cancel keeps.
TEST_F(OnScreen, OpenATypedPathSaveATypedNameAndCancel) {
    struct Case {
        bool save, audio, image, video;
        int filter;
        std::string keys;
        const char* chosen;
    };
    auto type = [](const std::string& key, const std::string& text) {
        return "xdotool key " + key + "; xdotool type --delay 10 " + text +
               "; sleep 0.5; xdotool key Return";
    };
    // Filter 3 is "All Video Files", 4 of the video group "  Mpeg1, Mpeg2 Video (mpeg,mpg,mpv)".
    // clang-format off
    const Case cases[] = {
        {false, true, true, true, 3, type("ctrl+l", mFolder / "clip.mpg"), "clip.mpg"},
        {true, false, false, true, 4, type("ctrl+a", "take"), "take.mpeg"},
        {false, true, false, false, 1, "xdotool key Escape", nullptr},
    };
    // clang-format on
    for (const Case& c : cases) {
        MFileDialog::sLastFile = Spec("song.wav");
        Dialog<MFileDialogWin> open(c.filter);
        Dialog<MFileSaveDialogWin> save(c.filter);
        MFileDialogWin& dialog = c.save ? static_cast<MFileDialogWin&>(save) : open;
        dialog.AddFilters(c.audio, c.image, c.video);
        DialogDriver driver(c.save ? "Save As" : "Open", c.keys);
        const bool chosen = dialog.Execute();
        ASSERT_TRUE(driver.Finish()) << "xdotool could not work the dialog: " << c.keys;
        EXPECT_EQ(chosen, c.chosen != nullptr) << c.keys;
        EXPECT_TRUE(dialog.GetFileSpec() == Spec(c.chosen ? c.chosen : "")) << c.keys;
        EXPECT_TRUE(MFileDialog::sLastFile == Spec(c.chosen ? c.chosen : "song.wav")) << c.keys;
        EXPECT_EQ(dialog.GetSelectedFilter(), c.filter) << "the dialog started and ended on it";
    }
}

}  // namespace
}  // namespace basicutils
