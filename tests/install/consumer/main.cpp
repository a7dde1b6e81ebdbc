// Uses the installed library through the umbrella header only.
#include <basicutils/BasicUtils.h>

#include <cstdio>

using namespace basicutils;

int main() {
    CTimecode tc(1, 0, 0, 0, kFrameType30);
    LList list;
    void* item = &tc;
    list.InsertItemsAt(1, kLastIndex, &item, 0);
    MString text;
    text.Format(u"%d frames", tc.GetTotalFrame());
    char out[64];
    text.ExportASCII(out, 63, kCharacterSetWindows);
    std::printf("%s, %u item\n", out, list.GetCount());
    return tc.GetTotalFrame() == 108001 && list.GetCount() == 1 ? 0 : 1;
}
