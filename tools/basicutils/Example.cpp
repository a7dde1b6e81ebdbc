// The built-in example: what `basicutils` with no argument shows. It walks
// through the library's spine: timecodes that notify, arrays whose iterators
// survive edits, the string, and a background task.
#include <basicutils/BasicUtils.h>

#include <cstdio>
#include <string>

#include "Commands.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;

std::string Label(const CTimecode& tc) {
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u:%02u", tc.GetHour(), tc.GetMinute(),
                  tc.GetSecond(), tc.GetFrame());
    return text;
}

// Prints every change of the timecodes it is registered with.
struct ChangeWatcher : LResponder {
    bool Respond(int32_t code, LNotifier* notifier, int32_t, intptr_t) override {
        auto* tc = dynamic_cast<CTimecode*>(notifier);
        std::printf("    heard change %d: now %s\n", code, tc ? Label(*tc).c_str() : "?");
        ++changes;
        return true;
    }
    int changes = 0;
};

void ShowTimecodes() {
    std::printf("Timecodes\n");
    CTimecode tc(0, 59, 59, 0, kFrameType30);
    ChangeWatcher watcher;
    tc.AddResponder(&watcher);
    std::printf("  %s at %g fps is frame %d\n", Label(tc).c_str(), tc.GetFrameRate(),
                tc.GetTotalFrame());
    std::printf("  SetFrame(75) clamps to the rate:\n");
    tc.SetFrame(75);
    std::printf("  SetFrame(29) again changes nothing: %s\n", tc.SetFrame(29) ? "true" : "false");
    CTimecode next = tc + 1;
    std::printf("  one frame later: %s (frame %d); no wrap at 24 hours:\n", Label(next).c_str(),
                next.GetTotalFrame());
    CTimecode late = CTimecode(23, 59, 59, 29, kFrameType30) + 1;
    std::printf("    23:59:59:29 + 1 = %s\n", Label(late).c_str());
    CTimecode early = CTimecode(0, 0, 1, 0, kFrameType30) - CTimecode(0, 0, 5, 0, kFrameType30);
    std::printf("  arithmetic stops at zero: 00:00:01:00 - 00:00:05:00 = %s\n",
                Label(early).c_str());
    CTimecode pal(0, 0, 1, 0, kFrameType25);
    std::printf("  packed form of 00:00:01:00 at 25 fps: %.1f; %u ms\n", static_cast<double>(pal),
                static_cast<uint32_t>(pal));
    std::printf("  the watcher heard %d change(s)\n\n", watcher.changes);
}

void ShowLists() {
    std::printf("Lists and iterators\n");
    LList list;
    static const char* const kNames[] = {"intro", "menu", "feature", "credits", "extras"};
    for (const char* name : kNames) {
        const void* item = name;
        list.InsertItemsAt(1, kLastIndex, &item, 0);
    }
    std::printf("  %u items; walking and removing \"menu\" and \"credits\" on the way:\n",
                list.GetCount());
    LListIterator it(list, 0);
    const char* name = nullptr;
    while (it.Next(&name)) {
        std::printf("    %d: %s\n", it.GetCurrentIndex(), name);
        if (std::string(name) == "menu" || std::string(name) == "credits")
            list.RemoveItemsAt(1, it.GetCurrentIndex());
    }
    std::printf("  left: ");
    LListIterator again(list, 0);
    while (again.Next(&name)) std::printf("%s ", name);
    std::printf("\n\n");
}

void ShowStrings() {
    std::printf("Strings\n");
    MString path(u"DISC\\VIDEO_TS\\menu_01.vob");
    MString folder, file;
    path.Split(u'\\', folder, file, false);
    MString line;
    line.Format(u"%s holds %s, %d%% done, %f s", static_cast<const char16_t*>(folder),
                static_cast<const char16_t*>(file), 50, 1.5);
    char utf8[256];
    line.ExportASCII(utf8, 255, kCharacterSetWindows);
    std::printf("  Split and Format: %s\n", utf8);
    line.Change2Upper();
    line.ExportASCII(utf8, 255, kCharacterSetWindows);
    std::printf("  Change2Upper:     %s\n\n", utf8);
}

}  // namespace

int RunExample() {
    std::printf("BasicUtils: a tour of the library\n\n");
    ShowTimecodes();
    ShowLists();
    ShowStrings();
    std::printf(
        "A background task: Execute on a worker thread, progress through\n"
        "CThreadStatus, the end carried back to this (the main) thread's queue\n");
    std::fflush(stdout);
    return RunTaskExample();
}

}  // namespace basicutils_tool
