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
    void StartOn(int filter) { this->mSelectedFilter = filter; }
};

class OnScreen : public ::testing::Test {
  protected:
    void SetUp() override {
#if defined(__SANITIZE_THREAD__)
        // GTK and GLib are not built for ThreadSanitizer: it cannot see their
        // own locking between their worker threads and reports races inside
        // them. The dialog runs on one thread; the other presets test it.
        GTEST_SKIP() << "GTK is not instrumented for ThreadSanitizer";
#endif
        if (!XServer::Shared().Running()) GTEST_SKIP() << XServer::Shared().Why();
        HMODULE gtk = LoadLibraryW(u"libgtk-3.so.0");
        if (!gtk) GTEST_SKIP() << "GTK 3 is not installed (Debian package libgtk-3-0)";
        FreeLibrary(gtk);
        mFolder.Write("clip.mpg", "");
    }
    void TearDown() override { MFileDialog::sLastFile = MFileSpecWin(); }

    MFileSpecWin Spec(const std::string& name) const { return mFolder.Library(name).c_str(); }

    testing::TempFolder mFolder;
};

TEST_F(OnScreen, OpenTypeAPathAndConfirm) {
    Dialog<MFileDialogWin> dialog;
    dialog.AddFilters(true, true, true);
    dialog.StartOn(3);  // "All Video Files"
    MFileSpecWin start = Spec("");
    dialog.SetFileSpec(start);
    DialogDriver driver("Open", "xdotool key ctrl+l; xdotool type --delay 10 " +
                                    (mFolder / "clip.mpg") + "; sleep 0.5; xdotool key Return");
    const bool chosen = dialog.Execute();
    ASSERT_TRUE(driver.Finish()) << "xdotool could not work the dialog";
    ASSERT_TRUE(chosen);
    EXPECT_TRUE(dialog.GetFileSpec() == Spec("clip.mpg"));
    EXPECT_EQ(dialog.GetSelectedFilter(), 3) << "the dialog started and ended on it";
    EXPECT_TRUE(MFileDialog::sLastFile == Spec("clip.mpg"));
}

TEST_F(OnScreen, SaveATypedNameGetsTheFiltersExtension) {
    Dialog<MFileSaveDialogWin> dialog;
    dialog.AddFilters(false, false, true);
    dialog.StartOn(4);  // "  Mpeg1, Mpeg2 Video (mpeg,mpg,mpv)"
    MFileSpecWin start = Spec("");
    dialog.SetFileSpec(start);
    DialogDriver driver(
        "Save As",
        "xdotool key ctrl+a; xdotool type --delay 10 take; sleep 0.5; xdotool key Return");
    const bool chosen = dialog.Execute();
    ASSERT_TRUE(driver.Finish()) << "xdotool could not work the dialog";
    ASSERT_TRUE(chosen);
    EXPECT_TRUE(dialog.GetFileSpec() == Spec("take.mpeg"));
    EXPECT_EQ(dialog.GetSelectedFilter(), 4);
}

TEST_F(OnScreen, CancelChangesNothing) {
    MFileDialog::sLastFile = Spec("song.wav");
    MFileDialogWin dialog;
    dialog.AddFilters(true, false, false);
    DialogDriver driver("Open", "xdotool key Escape");
    const bool chosen = dialog.Execute();
    ASSERT_TRUE(driver.Finish()) << "xdotool could not work the dialog";
    EXPECT_FALSE(chosen);
    EXPECT_TRUE(dialog.GetFileSpec() == Spec("")) << "the last file's folder";
    EXPECT_TRUE(MFileDialog::sLastFile == Spec("song.wav"));
    EXPECT_EQ(dialog.GetSelectedFilter(), 1);
}

}  // namespace
}  // namespace basicutils
