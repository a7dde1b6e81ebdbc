// basicutils: a command-line tool over the BasicUtils library.
//
//   basicutils                 runs the built-in example
//   basicutils --help          lists the subcommands
//   basicutils --version       the version of the tool and library
//   basicutils help NAME       the usage of one subcommand (help help: of help)
//   basicutils NAME ARGS...    runs a subcommand
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Commands.h"

namespace basicutils_tool {

const Command kCommands[] = {
    {"timecode", "tc", "timecode arithmetic: frames, sums, differences, packed form, milliseconds",
     "usage: basicutils timecode ACTION [options]   (alias: tc)\n"
     "counting (--rate R: 24, 25, 30 or any rate from 24 to 1200; default 30):\n"
     "  frames TC        the 1-based frame count of TC (00:00:00:00 is frame 1)\n"
     "  at FRAME         the timecode of a frame count\n"
     "  add TC TC        the sum of two timecodes\n"
     "  sub TC TC        the difference (stops at 00:00:00:00)\n"
     "  pack TC          the packed double form: count * 10000 + rate * 100\n"
     "  unpack PACKED    the timecode of a packed value\n"
     "  ms TC            milliseconds from zero\n"
     "text, drop-frame labels and stretches:\n"
     "  parse TEXT [--keep]      read from the right (12 = frames; ';' means 25 fps)\n"
     "  read TEXT                read from the left (1:2 = 01:02:00:00)\n"
     "  drop TC [--start TC]     non-drop count to drop-frame label, from the start's minute\n"
     "  nondrop TC [--start TC]  drop-frame label to non-drop count\n"
     "  end START LENGTH [--drop]   the inclusive end of a stretch (--rate 25 for PAL)\n"
     "  length START END [--drop]   the length of a stretch\n"
     "  overlap START LENGTH START LENGTH   the stretch two have in common\n"
     "  pal TC...                relabel NTSC timecodes at 25 fps\n"
     "TC is HH:MM:SS:FF (;FF at 25 fps), read by the library from the left. Bad text is\n"
     "not refused: the library reads it as 0 and clamps, and the tool says what it read.\n"
     "limits: each field holds 16 bits (hours up to 65535), a frame count 32 bits (up to\n"
     "2147483647, 19884:05:11:16 at 30 fps), and arithmetic labels its answer through\n"
     "16-bit minutes (1092:15:59 at most). Past a limit the library's answer wraps; that\n"
     "is its contract, and the tool prints a note.",
     RunTimecode},
    {"bits", nullptr, "bit fields of a file at bit positions, MSB first",
     "usage: basicutils bits FILE POS:WIDTH...\n"
     "  Reads WIDTH bits (0 to 32) at bit position POS of FILE, counting from the\n"
     "  most significant bit of byte 0, and prints POS:WIDTH DECIMAL 0xHEX a line.\n"
     "  example: basicutils bits clip.m2v 0:32 32:12 44:12",
     RunBits},
    {"bytes", nullptr, "numbers in a named byte order, or a hex dump, at a byte offset",
     "usage: basicutils bytes FILE [--at N] [--mb16|--mb32|--mb64|--lb16|--lb32|--lb64|--count N]\n"
     "  At byte offset N (default 0) reads one number of 2, 4 or 8 bytes, most (mb)\n"
     "  or least (lb) significant byte first, and prints N FORM DECIMAL 0xHEX;\n"
     "  or dumps N bytes in hex and text (--count; by default up to 16 bytes).\n"
     "  example: basicutils bytes clip.m2v --at 4 --mb32",
     RunBytes},
    {"file", nullptr, "a file's size, dates and kind; unique names; deleting a folder tree",
     "usage: basicutils file ACTION\n"
     "  info PATH        size, dates, whether its drive counts as read-only, and whether\n"
     "                   it is the info file of a segmented file\n"
     "  unique PATH EXT  the first free name PATH-without-extension[_N]EXT beside PATH\n"
     "  rmtree DIR       deletes DIR and everything in it; stops at the first failure\n"
     "  A FIFO, a device or a folder where a file is expected is refused unopened.",
     RunFile},
    {"split", nullptr, "copy a file or standard input into a segmented file",
     "usage: basicutils split IN OUT --max SIZE\n"
     "  Copies IN (- for standard input) into the logical file OUT, starting a new\n"
     "  segment OUT.cfx.N each SIZE bytes (K, M, G: units of 1024), with a progress\n"
     "  line on stderr. OUT must not exist. example: basicutils split movie.mpv\n"
     "  /media/disc/movie.mpv --max 1G",
     RunSplit},
    {"join", nullptr, "read a segmented (or plain) file back as one",
     "usage: basicutils join LOGICAL [OUT]\n"
     "  Reads the logical file LOGICAL across its segments into OUT, or to stdout.",
     RunJoin},
    {"info", nullptr, "whether a file is segmented, its segments and their sizes",
     "usage: basicutils info LOGICAL\n"
     "  Says whether LOGICAL is a plain file or the info file of a segmented file,\n"
     "  lists each segment with its size, and the total. Exits 1 when a segment is\n"
     "  missing.",
     RunInfo},
    {"concat", nullptr, "append whole files to one, each padded to a block, with progress",
     "usage: basicutils concat OUT IN... [--block SECTORS] [--offset BYTES]\n"
     "  Appends each IN to OUT in turn, each padded with zeros to a multiple of\n"
     "  SECTORS sectors of 2048 bytes (1 to 64, default 1), through two buffers of\n"
     "  SECTORS x 4 MiB: the next piece is read while the last one is written, and\n"
     "  OUT is written unbuffered where its file system allows. OUT is made anew,\n"
     "  or, with --offset (a multiple of 2048), kept and written from that byte.\n"
     "  Ctrl-C stops after the current buffer; OUT keeps what was written, and the\n"
     "  tool says how much (exit status 130).",
     RunConcat},
    {"sum", nullptr, "read a file ahead on a worker task: Adler-32, size and throughput",
     "usage: basicutils sum FILE\n"
     "  Reads FILE with the library's read-ahead ring (two 4 MiB buffers, the next\n"
     "  one read while the task sums the current one) on a worker task, with a\n"
     "  progress line in MiB, and prints: ADLER32  SIZE bytes  RATE MiB/s  FILE",
     RunSum},
    {"task", nullptr, "run a checksum task on a worker thread with a progress line",
     "usage: basicutils task [MIB]\n"
     "  checksums MIB mebibytes of generated data (default 64) on a worker thread,\n"
     "  drawing progress on stderr and printing the result on stdout",
     RunTask},
    kEnvCommand,
    kSettingsCommand,
    kChooseCommand,
    kScriptCommand,
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

int UsageError(const std::string& message) {
    std::fprintf(stderr, "basicutils: %s\n", message.c_str());
    std::fprintf(stderr, "Try 'basicutils --help'.\n");
    return 2;
}

int Failure(const std::string& message) {
    std::fprintf(stderr, "basicutils: %s\n", message.c_str());
    return 1;
}

bool ParseInt(const std::string& text, long long& value) {
    if (text.empty()) return false;
    errno = 0;
    char* end = nullptr;
    long long v = std::strtoll(text.c_str(), &end, 10);
    if (errno != 0 || end == text.c_str() || *end != '\0') return false;
    value = v;
    return true;
}

bool ParseDouble(const std::string& text, double& value) {
    if (text.empty()) return false;
    errno = 0;
    char* end = nullptr;
    double v = std::strtod(text.c_str(), &end);
    if (errno != 0 || end == text.c_str() || *end != '\0' || !std::isfinite(v)) return false;
    value = v;
    return true;
}

namespace {

const Command* Find(const std::string& name) {
    for (const Command* c = kCommands; c->name; ++c)
        if (name == c->name || (c->alias && name == c->alias)) return c;
    return nullptr;
}

void PrintHelp() {
    std::printf(
        "basicutils: a command-line tool over the BasicUtils library\n\n"
        "usage: basicutils                 run the built-in example\n"
        "       basicutils --help          this list\n"
        "       basicutils --version       the version\n"
        "       basicutils help COMMAND    the usage of one command\n"
        "       basicutils COMMAND ARGS... run a command\n\ncommands:\n");
    for (const Command* c = kCommands; c->name; ++c)
        std::printf("  %-10s %-4s %s\n", c->name, c->alias ? c->alias : "", c->summary);
}

}  // namespace
}  // namespace basicutils_tool

int main(int argc, char** argv) {
    using namespace basicutils_tool;
    if (argc < 2) return RunExample();
    std::string first = argv[1];
    if (first == "--help" || first == "-h") {
        PrintHelp();
        return 0;
    }
    if (first == "--version" || first == "-V") {
        std::printf("basicutils %s\n", BASICUTILS_VERSION);
        return 0;
    }
    if (first == "help") {
        if (argc < 3) {
            PrintHelp();
            return 0;
        }
        if (std::string(argv[2]) == "help") {
            std::printf(
                "usage: basicutils help COMMAND\n  the usage of COMMAND; basicutils "
                "--help lists the commands\n");
            return 0;
        }
        const Command* c = Find(argv[2]);
        if (!c) return UsageError("unknown command '" + std::string(argv[2]) + "'");
        std::printf("%s\n", c->usage);
        return 0;
    }
    const Command* c = Find(first);
    if (!c) return UsageError("unknown command '" + first + "'");
    Args args(argv + 2, argv + argc);
    if (!args.empty() && (args[0] == "--help" || args[0] == "-h")) {
        std::printf("%s\n", c->usage);
        return 0;
    }
    return c->run(args);
}
