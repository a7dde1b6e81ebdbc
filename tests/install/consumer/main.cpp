// Uses the installed library through the umbrella header only.
#include <basicutils/BasicUtils.h>

#include <cstdio>
#include <string>

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

    // A file written and measured through the file layer, and the 8-bit
    // basename beside the C library's own.
    MFileUniv file;
    char line[] = "consumer\n";
    const bool wrote =
        file.FOpen(u"basicutils_consumer.txt", kOpenWriteBinary) == 0 && file.FPuts(line) == 0;
    file.FClose();
    const bool sized = file.GetSize() == 9;
    _wremove(u"basicutils_consumer.txt");
    char path[] = "a\\b";
    const bool named = std::string(basicutils::basename(path)) == "b";
    return tc.GetTotalFrame() == 108001 && list.GetCount() == 1 && wrote && sized && named ? 0 : 1;
}
