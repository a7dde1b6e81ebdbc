// Fuzzes the script reader: any bytes as a working file, worked by every
// reading operation in an order the input chooses.
//
// The first bytes are the program: each byte picks an operation and its
// stop character; the rest is the working file. Properties checked for any
// input: every reading operation answers 1, 0 or -1; the line count never
// goes down and never exceeds the lines the file can hold; a copy taken in
// the middle reads on without touching its source's line; nothing reads
// outside a line (the sanitizers watch).
#include <basicutils/script/CScriptFile.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>

#include "FuzzSupport.h"

using namespace basicutils;

namespace {

using fuzzsupport::Check;

class Parser : public CScriptFile {
  public:
    int Step(unsigned char op) {
        const char16_t stop = u",;=(){} #/"[op % 10];
        MString text;
        MStringList list;
        char16_t found = 0;
        switch ((op / 10) % 9) {
            case 0:
                return SkipWhiteSpaceAndChar(stop);
            case 1:
                return GetString(&text, stop);
            case 2:
                return GetString2(&text, MString(u",;="));
            case 3:
                return StopUntilChars(MString(u"={"), &found);
            case 4:
                return GetListMember(&list);
            case 5:
                return GetOneChar();
            case 6:
                return SkipOneLine();
            case 7:
                return GetToken(&text, op % 2 ? u" \t\r\n" : u",", &text);
            default:
                return (void)GetCurrentLine()[0], 1;
        }
    }
};

std::string WorkingFile() {
    static const std::string name = (std::filesystem::temp_directory_path() /
                                     ("ScriptFile_fuzz_" + std::to_string(std::random_device{}())))
                                        .string();
    return name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const size_t programSize = size == 0 ? 0 : 1 + data[0] % 32;
    if (programSize > size) return 0;
    const std::string file = WorkingFile();
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data + programSize),
               static_cast<std::streamsize>(size - programSize));
    size_t lines = 1;
    for (size_t i = programSize; i < size; ++i) lines += data[i] == '\n';
    const std::u16string path(file.begin(), file.end());

    auto parser = std::make_unique<Parser>();
    Check(parser->OpenForParse(path.c_str()) == 1);
    std::unique_ptr<Parser> copy;
    int lastLine = 0;
    for (int round = 0; round < 4; ++round) {
        for (size_t i = 1; i < programSize; ++i) {
            Parser& reader = copy && (data[i] & 1) ? *copy : *parser;
            const int result = reader.Step(data[i]);
            Check(result >= -1 && result <= 1);
            Check(parser->GetCurrentLineNum() >= lastLine);
            lastLine = parser->GetCurrentLineNum();
            // Long lines come in pieces, each counted: at most one per byte.
            Check(static_cast<size_t>(lastLine) <= lines + (size - programSize) / 131069);
        }
        if (!copy) copy = std::make_unique<Parser>(*parser);
    }
    copy.reset();
    parser.reset();  // deletes the working file
    return 0;
}
