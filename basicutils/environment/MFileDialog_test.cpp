// The dialogs' own logic, through a dialog runner installed by the test: the
// filter tables, the start name, the filter index, the last file, and the
// save dialog's extension.
#include <basicutils/environment/MFileDialog.h>
#include <basicutils/platform/FileDialog.h>
#include <basicutils/text/WideString.h>
#include <gtest/gtest.h>

#include <string>

#include "EnvironmentTest_test.h"

namespace basicutils {
namespace {

using environmenttest::Narrow;

// Records the request and answers what the test scripted.
struct ScriptedRunner {
    bool accept = true;
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
    void SetUp() override {
        SetFileDialogRunner(ScriptedRunner::Run, &mRunner);
        MFileDialog::sLastFile = MFileSpecWin();
    }
    void TearDown() override {
        SetFileDialogRunner(nullptr, nullptr);
        MFileDialog::sLastFile = MFileSpecWin();
    }
    ScriptedRunner mRunner;
};

std::u16string PathOf(MFileDialog& dialog) {
    return std::u16string(static_cast<const char16_t*>(dialog.GetFileSpec().GetFilePath()));
}

TEST_F(Dialogs, StandardFiltersByGroup) {
    struct Case {
        bool audio, image, video;
        size_t count;
        std::u16string allData;  // the composed pattern's start and end
        const char16_t* ends;
    };
    const Case cases[] = {
        {false, false, false, 2, u"", u""},
        {true, false, false, 8, u"*.ac3;", u"*.wav;"},
        {false, true, false, 13, u"*.bmp;", u"*.yuv;"},
        {false, false, true, 5, u"*.mpeg;", u"*.mps"},
        {true, false, true, 11, u"*.ac3;", u"*.mps"},
        {true, true, true, 22, u"*.ac3;", u"*.mpv;*.mps"},
    };
    for (const Case& c : cases) {
        MFileDialogWin dialog;
        EXPECT_TRUE(dialog.AddFilters(c.audio, c.image, c.video));
        ASSERT_FALSE(dialog.Execute());  // the runner declines; it saw the filters
        const auto& filters = mRunner.seen.filters;
        ASSERT_EQ(filters.size(), c.count) << c.audio << c.image << c.video;
        EXPECT_EQ(filters[0].first, u"All files (*.*)");
        EXPECT_EQ(filters[1].first, u"All Data Files");
        const std::u16string& all = filters[1].second;
        EXPECT_EQ(all.substr(0, c.allData.size()), c.allData);
        EXPECT_TRUE(all.size() >= wcslen(c.ends) &&
                    all.compare(all.size() - wcslen(c.ends), std::u16string::npos, c.ends) == 0)
            << Narrow(all.c_str());
    }
    EXPECT_EQ(mRunner.seen.filters[1].second.size(), 199u) << "the full pattern reaches the dialog";
    EXPECT_EQ(mRunner.seen.filters[11].first, u"All Image Files");
    EXPECT_EQ(mRunner.seen.filters[11].second.size(), 137u);
    EXPECT_EQ(mRunner.seen.filters[21].first, u"  YUV [NTSC,PAL] 4:2:0 Image (yuv)");
}

TEST_F(Dialogs, LongPatternsAreKeptWholeAndTheRecordHoldsWhatFits) {
    MFileSaveDialogWin dialog;
    dialog.AddFilters(true, true, true);
    ASSERT_FALSE(dialog.Execute());
    const std::u16string full = mRunner.seen.filters[1].second;
    const SFileFilter* all = dialog.FindFileFilterByDescription(u"All Data Files");
    ASSERT_NE(all, nullptr);
    const std::u16string stored(all->mPattern);
    EXPECT_LT(stored.size(), 128u);
    EXPECT_EQ(full.substr(0, stored.size()), stored);
    EXPECT_EQ(full[stored.size()], u';') << "the record ends at a pattern's end";
    std::u16string description(200, u'd');
    EXPECT_TRUE(dialog.AddFilter(description.c_str(), u"*.x"));
    EXPECT_EQ(dialog.FindFileFilterByDescription(description.c_str()), nullptr)
        << "a long description is cut to 127 units";
    EXPECT_NE(dialog.FindFileFilterByDescription(description.substr(0, 127).c_str()), nullptr);
}

TEST_F(Dialogs, ThirtyTwoFiltersAtMost) {
    MFileDialogWin dialog;
    for (int i = 0; i < 32; ++i) EXPECT_TRUE(dialog.AddFilter(u"same", u"*.a"));
    EXPECT_FALSE(dialog.AddFilter(u"33rd", u"*.b"));
    EXPECT_EQ(dialog.FindFileFilterByDescription(u"33rd"), nullptr);
    dialog.Execute();
    EXPECT_EQ(mRunner.seen.filters.size(), 32u);
    MFileDialogWin two;
    two.AddFilter(u"twin", u"*.1");
    two.AddFilter(u"twin", u"*.2");
    EXPECT_EQ(std::u16string(two.FindFileFilterByDescription(u"twin")->mPattern), u"*.2");
    EXPECT_EQ(two.FindFileFilterByDescription(u"none"), nullptr);
}

TEST_F(Dialogs, StartNameFromTheFileAndTheFirstPattern) {
    struct Case {
        const char16_t* file;
        bool filters;
        const char16_t* initial;
    };
    const Case cases[] = {
        {u"", false, u"*.*"},
        {u"", true, u"*.mpa;*.wav"},
        {u"C:", true, u"C:\\*.mpa;*.wav"},
        {u"C:", false, u"C:\\*.*"},
        {u"\\a\\", true, u"\\a\\*.mpa;*.wav"},
        {u"\\a\\", false, u"\\a\\*.*"},
        {u"\\a\\b.mpg", true, u"\\a\\b.mpg"},
    };
    for (const Case& c : cases) {
        MFileDialogWin dialog;
        if (c.filters) dialog.AddFilter(u"Audio", u"*.mpa;*.wav");
        MFileSpecWin spec(c.file);
        dialog.SetFileSpec(spec);
        dialog.Execute();
        EXPECT_EQ(mRunner.seen.initialName, c.initial) << Narrow(c.file);
        EXPECT_TRUE(mRunner.seen.open);
        EXPECT_EQ(mRunner.seen.flags, 0x81804u);
    }
}

TEST_F(Dialogs, TheLastFileOpensTheNextDialogAndACancelKeepsIt) {
    MFileDialogWin first;
    first.AddFilters(false, false, true);
    mRunner.path = u"C:\\a\\b.mpg";
    mRunner.filter = 4;
    ASSERT_TRUE(first.Execute());
    EXPECT_EQ(PathOf(first), u"C:\\a\\b.mpg");
    EXPECT_EQ(first.GetSelectedFilter(), 4);
    EXPECT_TRUE(MFileDialog::sLastFile == MFileSpecWin(u"C:\\a\\b.mpg"));
    EXPECT_EQ(first.Execute(), true);
    EXPECT_EQ(mRunner.seen.filterIndex, 4) << "a second run starts on the filter chosen";

    MFileDialogWin next;
    next.AddFilter(u"Video", u"*.mpv");
    mRunner.accept = false;
    EXPECT_FALSE(next.Execute());
    EXPECT_EQ(mRunner.seen.initialName, u"C:\\a\\*.mpv");
    EXPECT_EQ(mRunner.seen.filterIndex, 1);
    EXPECT_EQ(PathOf(next), u"C:\\a\\");
    EXPECT_TRUE(MFileDialog::sLastFile == MFileSpecWin(u"C:\\a\\b.mpg")) << "a cancel keeps it";
}

TEST_F(Dialogs, DirectoryOfASpec) {
    MFileDialogWin dialog;
    struct Case {
        const char16_t *path, *directory;
    };
    const Case cases[] = {
        {u"C:\\a\\b.mpg", u"C:\\a\\"}, {u"b.mpg", u"b.mpg"}, {u"\\", u"\\"}, {u"", u""}};
    for (const Case& c : cases) {
        MFileSpecWin spec(c.path);
        const MFileSpecWin directory = dialog.GetDirectory(spec);
        EXPECT_TRUE(directory == MFileSpecWin(c.directory)) << Narrow(c.path);
    }
}

TEST_F(Dialogs, SaveSuppliesTheChosenFiltersFirstExtension) {
    struct Case {
        const char16_t* pattern;
        const char16_t* chosen;
        const char16_t* result;
    };
    const Case cases[] = {
        {u"*.mpa", u"\\out\\take", u"\\out\\take.mpa"},
        {u"*.*", u"\\out\\take", u"\\out\\take.*"},
        {u"*.mpeg;*.mpg;*.mpv", u"\\out\\take", u"\\out\\take.mpeg"},
        {u"raw;*.x", u"\\out\\take", u"\\out\\takeraw"},
        {u"raw", u"\\out\\take", u"\\out\\takeraw"},
        {u"*.mpa", u"\\out\\take.wav", u"\\out\\take.wav"},
    };
    for (const Case& c : cases) {
        MFileSaveDialogWin dialog;
        dialog.AddFilter(u"All files (*.*)", u"*.*");
        dialog.AddFilter(u"Chosen", c.pattern);
        mRunner.path = c.chosen;
        mRunner.filter = 2;
        EXPECT_TRUE(dialog.Execute());
        EXPECT_EQ(PathOf(dialog), c.result) << Narrow(c.pattern);
        EXPECT_FALSE(mRunner.seen.open);
        EXPECT_EQ(mRunner.seen.flags, 0x4u);
        EXPECT_TRUE(MFileDialog::sLastFile == MFileSpecWin(c.result));
    }
    MFileSaveDialogWin cancelled;
    cancelled.AddFilter(u"Audio", u"*.mpa");
    mRunner.accept = false;
    EXPECT_FALSE(cancelled.Execute());
    EXPECT_EQ(PathOf(cancelled), u"\\out\\.mpa") << "the folder of the last file, plus .mpa";
    cancelled.AppendFilterExtension(nullptr, nullptr);
    EXPECT_EQ(PathOf(cancelled), u"\\out\\.mpa");
}

TEST_F(Dialogs, CopiesKeepFiltersAndFile) {
    MFileSaveDialogWin original;
    original.AddFilters(true, true, true);
    MFileSpecWin spec(u"\\x\\y.mpv");
    original.SetFileSpec(spec);
    MFileSaveDialogWin copy(original);
    copy.Execute();
    EXPECT_EQ(mRunner.seen.filters.size(), 22u);
    EXPECT_EQ(mRunner.seen.filters[1].second.size(), 199u);
    EXPECT_EQ(mRunner.seen.initialName, u"\\x\\y.mpv");
}

}  // namespace
}  // namespace basicutils
