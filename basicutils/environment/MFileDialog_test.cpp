// The dialogs' own logic through a runner installed by the test: the filter
// tables, the start name, the filter index, the last file, the save
// dialog's extension.
#include <basicutils/environment/MFileDialog.h>
#include <basicutils/platform/FileDialog.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace basicutils {
namespace {

// Records the request and answers what the test scripted.
struct ScriptedRunner {
    bool accept = false;
    std::u16string path;
    int filter = 1;
    SFileDialogRequest seen;
    static bool Run(SFileDialogRequest& request, void* context) {
        auto* self = static_cast<ScriptedRunner*>(context);
        self->seen = request;
        request.path = self->path;
        request.chosenFilter = self->filter;
        return self->accept;
    }
};

class Dialogs : public ::testing::Test {
  protected:
    void SetUp() override { SetFileDialogRunner(ScriptedRunner::Run, &mRunner); }
    void TearDown() override {
        SetFileDialogRunner(nullptr, nullptr);
        MFileDialog::sLastFile = MFileSpecWin();
    }
    const std::u16string& Pattern(size_t i) const { return mRunner.seen.filters.at(i).second; }
    ScriptedRunner mRunner;
};

std::u16string PathOf(MFileDialog& dialog) {
    return static_cast<const char16_t*>(dialog.GetFileSpec().GetFilePath());
}

TEST_F(Dialogs, StandardFiltersByGroupWithWholeLongPatterns) {
    const std::tuple<bool, bool, bool, size_t, std::u16string> cases[] = {
        {false, false, false, 2, u""},
        {true, false, false, 8, u"*.wav;"},
        {false, true, false, 13, u"*.yuv;"},
        {false, false, true, 5, u"*.mpeg;*.mpg;*.mpv;*.mps"},
        {true, true, true, 22, u"*.yuv;*.mpeg;*.mpg;*.mpv;*.mps"},
    };
    for (const auto& [audio, image, video, count, allDataEnd] : cases) {
        MFileSaveDialogWin dialog;
        EXPECT_TRUE(dialog.AddFilters(audio, image, video));
        dialog.Execute();
        ASSERT_EQ(mRunner.seen.filters.size(), count);
        EXPECT_EQ(mRunner.seen.filters[1].first, u"All Data Files");
        EXPECT_EQ(Pattern(1).substr(Pattern(1).size() - allDataEnd.size()), allDataEnd);
    }
    EXPECT_EQ(Pattern(1).size(), 199u) << "the full pattern reaches the dialog";
    EXPECT_EQ(Pattern(11).size(), 137u) << "All Image Files";
    EXPECT_EQ(mRunner.seen.filters[21].first, u"  YUV [NTSC,PAL] 4:2:0 Image (yuv)");
    MFileSaveDialogWin dialog;
    dialog.AddFilters(true, true, true);
    const std::u16string stored(dialog.FindFileFilterByDescription(u"All Data Files")->mPattern);
    EXPECT_LT(stored.size(), 128u);
    EXPECT_EQ(Pattern(1).substr(0, stored.size() + 1), stored + u";") << "cut at a pattern's end";
}

TEST_F(Dialogs, ThirtyTwoFiltersAndTheLastOfADescription) {
    MFileDialogWin dialog;
    for (int i = 0; i < 32; ++i) EXPECT_TRUE(dialog.AddFilter(u"twin", i ? u"*.a" : u"*.b"));
    EXPECT_FALSE(dialog.AddFilter(u"33rd", u"*.c"));
    dialog.Execute();
    EXPECT_EQ(mRunner.seen.filters.size(), 32u);
    EXPECT_EQ(std::u16string(dialog.FindFileFilterByDescription(u"twin")->mPattern), u"*.a");
    EXPECT_EQ(dialog.FindFileFilterByDescription(u"33rd"), nullptr);
    const std::u16string longName(200, u'd');
    MFileDialogWin other;
    other.AddFilter(longName.c_str(), u"*.x");
    EXPECT_NE(other.FindFileFilterByDescription(longName.substr(0, 127).c_str()), nullptr)
        << "a description keeps 127 units";
}

TEST_F(Dialogs, StartNameFromTheFileAndTheFirstPattern) {
    const std::tuple<const char16_t*, bool, std::u16string> cases[] = {
        {u"", false, u"*.*"},
        {u"", true, u"*.mpa;*.wav"},
        {u"C:", true, u"C:\\*.mpa;*.wav"},
        {u"C:", false, u"C:\\*.*"},
        {u"\\a\\", true, u"\\a\\*.mpa;*.wav"},
        {u"\\a\\b.mpg", true, u"\\a\\b.mpg"},
    };
    for (const auto& [file, filters, initial] : cases) {
        MFileDialogWin dialog;
        if (filters) dialog.AddFilter(u"Audio", u"*.mpa;*.wav");
        MFileSpecWin spec(file);
        dialog.SetFileSpec(spec);
        dialog.Execute();
        EXPECT_EQ(mRunner.seen.initialName, initial);
        EXPECT_EQ(mRunner.seen.flags, 0x81804u);
    }
    MFileSpecWin file(u"C:\\a\\b.mpg"), bare(u"b.mpg");
    MFileDialogWin dialog;
    EXPECT_TRUE(dialog.GetDirectory(file) == MFileSpecWin(u"C:\\a\\"));
    EXPECT_TRUE(dialog.GetDirectory(bare) == bare);
}

TEST_F(Dialogs, TheLastFileOpensTheNextDialogOnItsFolder) {
    MFileDialogWin first;
    first.AddFilters(false, false, true);
    mRunner = {true, u"C:\\a\\b.mpg", 4, {}};
    ASSERT_TRUE(first.Execute());
    EXPECT_EQ(first.GetSelectedFilter(), 4);
    first.Execute();
    EXPECT_EQ(mRunner.seen.filterIndex, 4) << "a second run starts on the filter chosen";
    MFileDialogWin next;
    next.AddFilter(u"Video", u"*.mpv");
    next.Execute();
    EXPECT_EQ(mRunner.seen.initialName, u"C:\\a\\*.mpv");
    EXPECT_EQ(mRunner.seen.filterIndex, 1);
}

TEST_F(Dialogs, SaveSuppliesTheChosenFiltersFirstExtension) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"*.mpa", u"\\o\\take.mpa"},
        {u"*.*", u"\\o\\take.*"},
        {u"*.mpeg;*.mpg", u"\\o\\take.mpeg"},
        {u"raw;*.x", u"\\o\\takeraw"},
        {u"raw", u"\\o\\takeraw"},
    };
    for (const auto& [pattern, result] : cases) {
        MFileSaveDialogWin dialog;
        dialog.AddFilter(u"All files (*.*)", u"*.*");
        dialog.AddFilter(u"Chosen", pattern);
        mRunner = {true, u"\\o\\take", 2, {}};
        EXPECT_TRUE(dialog.Execute());
        EXPECT_EQ(PathOf(dialog), result);
        EXPECT_EQ(mRunner.seen.flags, 0x4u);
        mRunner.path = u"\\o\\take.wav";
        dialog.Execute();
        EXPECT_EQ(PathOf(dialog), u"\\o\\take.wav") << "an extension stays alone";
    }
    MFileSaveDialogWin cancelled;
    cancelled.AddFilter(u"Audio", u"*.mpa");
    mRunner.accept = false;
    EXPECT_FALSE(cancelled.Execute());
    EXPECT_EQ(PathOf(cancelled), u"\\o\\.mpa") << "the last file's folder, and .mpa all the same";
}

}  // namespace
}  // namespace basicutils
