// `basicutils env`, `basicutils settings` and `basicutils choose`: the
// application's environment on the command line.
//
//   env                         the folders, the settings file in use, the
//                               version record and constants
//   settings get SECTION KEY    one setting (exit 1 when it isn't stored)
//   settings set SECTION KEY VALUE
//                               --file INI uses that file instead of the
//                               user's own settings file
//   choose [--save] [--audio] [--image] [--video]
//                               the file dialog with the standard filters;
//                               the chosen path on stdout, exit 1 when
//                               cancelled or when no dialog can be shown
//
// `env` shows only what can be found without creating anything: the
// library's folder functions that create their folder are not called, and
// the user's folders are shown as their settings or defaults.
#include <basicutils/BasicUtils.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Commands.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;

// A library path as the system spells it: UTF-8, `/` between names.
std::string Shown(const char16_t* text) {
    if (!text || !*text) return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(n > 0 ? n : 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), n, nullptr, nullptr);
    out.resize(out.size() - 1);
    for (char& c : out)
        if (c == '\\') c = '/';
    return out;
}

MString FromUtf8(const std::string& text) {
    MString wide;
    wide.ImportASCII(text.c_str(), -1);
    return wide;
}

void Line(const char* label, const std::string& value) {
    std::printf("  %-22s %s\n", label, value.c_str());
}

// A user folder's setting, or its default when none is stored.
std::string UserFolder(const char16_t* key, const char16_t* below) {
    const CString stored = CVelmorantProfile::GetProfileStringW(u"VELMORANT", key, u"\x1F");
    if (stored != u"\x1F") return Shown(stored) + "   (setting)";
    MString folder = CVelmorantDirectories::GetSystemDrive();
    folder += below;
    return Shown(folder) + "   (default)";
}

int RunEnv(const Args& args) {
    if (!args.empty()) return UsageError("env takes no arguments");
    char16_t program[1024];
    const DWORD n = GetModuleFileNameW(nullptr, program, 1024);
    std::printf("program and settings\n");
    Line("program", n > 0 && n < 1024 ? Shown(program) : "(unknown)");
    Line("settings file", Shown(AfxGetModuleState()->m_pCurrentWinApp->GetProfileFile().c_str()));
    Line("beside the program", Shown(CVelmorantDirectories::GetAppProfile()));
    std::printf("folders\n");
    Line("system drive (home)", Shown(CVelmorantDirectories::GetSystemDrive()));
    Line("system folder", Shown(CVelmorantDirectories::GetSystemDirectoryW()));
    Line("drivers", Shown(CVelmorantDirectories::GetSystemDriverDirectory()));
    Line("application", Shown(CVelmorantDirectories::GetAppDirectory()));
    Line("documentation", Shown(CVelmorantDirectories::GetDocumentationDirectory()));
    Line("scenarios", UserFolder(u"Scenario Directory", u"\\My Scenarios\\"));
    Line("scripts", UserFolder(u"Script Directory", u"\\My Scenarios\\Script\\"));
    CVersionControl record;
    record.SetMajorVersion(kMajorVersion);
    record.SetMinorVersion(kMinorVersion);
    record.SetBugFixVersion(kBugFixVersion);
    record.SetDataFormatVersion(kDataFormatVersion);
    record.SetBuildVersion(kBuildVersion);
    std::printf("version\n");
    Line("library", std::to_string(kMajorVersion) + "." + std::to_string(kMinorVersion) + "." +
                        std::to_string(kBugFixVersion) + ", build " +
                        std::to_string(kBuildVersion));
    Line("data format", std::to_string(kDataFormatVersion));
    Line("record",
         std::to_string(record.GetMajorVersion()) + "." + std::to_string(record.GetMinorVersion()) +
             "." + std::to_string(record.GetBugFixVersion()) + ", edition " +
             std::to_string(record.GetEdition()) + " (" + Shown(record.GetEditionNameString()) +
             "), product " + std::to_string(record.GetProduct()));
    return 0;
}

int RunSettings(const Args& given) {
    Args args;
    for (size_t i = 0; i < given.size(); ++i) {
        if (given[i] != "--file") {
            args.push_back(given[i]);
        } else if (i + 1 < given.size()) {
            CVelmorantProfile::SetProfilePath(FromUtf8(given[++i]));
        } else {
            return UsageError("--file needs a file name");
        }
    }
    if (args.size() < 3) return UsageError("settings get|set SECTION KEY [VALUE]");
    const MString section = FromUtf8(args[1]), key = FromUtf8(args[2]);
    CWinApp* app = AfxGetModuleState()->m_pCurrentWinApp;
    const std::string file = Shown(app->GetProfileFile().c_str());
    if (args[0] == "get" && args.size() == 3) {
        const CString value = CVelmorantProfile::GetProfileStringW(section, key, u"\x1F");
        if (value == u"\x1F")
            return Failure("[" + args[1] + "] " + args[2] + " is not set in " + file);
        std::printf("%s\n", Shown(value).c_str());
        return 0;
    }
    if (args[0] == "set" && args.size() == 4) {
        if (app->WriteProfileStringW(section, key, FromUtf8(args[3]))) return 0;
        if (GetLastError() == ERROR_INVALID_PARAMETER)
            return Failure("[" + args[1] + "] " + args[2] +
                           ": a settings file cannot hold an empty name, a line break, a ']' in "
                           "a section, a '=' in a key, or a key that starts like a comment or a "
                           "section");
        return Failure("cannot write " + file + ": " +
                       Shown(FormatMessageText(GetLastError()).c_str()));
    }
    return UsageError("settings get SECTION KEY, or settings set SECTION KEY VALUE");
}

int RunChoose(const Args& args) {
    bool save = false, audio = false, image = false, video = false;
    for (const std::string& a : args) {
        if (a == "--save")
            save = true;
        else if (a == "--audio")
            audio = true;
        else if (a == "--image")
            image = true;
        else if (a == "--video")
            video = true;
        else
            return UsageError("unknown option '" + a + "' for choose");
    }
    if (!audio && !image && !video) audio = image = video = true;
    const char* x = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    if ((!x || !*x) && (!wayland || !*wayland))
        return Failure("no display: set DISPLAY (or WAYLAND_DISPLAY) to show the dialog");
    MFileDialogWin open;
    MFileSaveDialogWin saveDialog;
    MFileDialogWin& dialog = save ? saveDialog : open;
    dialog.AddFilters(audio, image, video);
    if (!dialog.Execute()) return Failure("no file chosen");
    std::printf("%s\n", Shown(dialog.GetFileSpec().GetFilePath()).c_str());
    return 0;
}

}  // namespace

const Command kEnvCommand = {
    "env", nullptr, "the application's folders, settings file and version record",
    "usage: basicutils env\n"
    "  The program's path, the settings file in use and the one beside the program,\n"
    "  the folders the library uses (system drive, system folder, application,\n"
    "  scenarios, scripts) and the version constants and record. Creates nothing.",
    RunEnv};

const Command kSettingsCommand = {
    "settings", nullptr, "read or write one setting (section, key)",
    "usage: basicutils settings get SECTION KEY [--file INI]\n"
    "       basicutils settings set SECTION KEY VALUE [--file INI]\n"
    "  get prints the value (exit 1 when the key isn't stored); set stores it.\n"
    "  The file is the user's own ($XDG_CONFIG_HOME/basicutils.ini, else\n"
    "  ~/.config/basicutils.ini) unless --file names another.",
    RunSettings};

const Command kChooseCommand = {
    "choose", nullptr, "the file dialog with the standard media filters",
    "usage: basicutils choose [--save] [--audio] [--image] [--video]\n"
    "  Shows the open dialog (or the save dialog) with the standard filters of the\n"
    "  chosen groups (all three when none is named) and prints the chosen path.\n"
    "  Exit status 1 when the dialog is cancelled or cannot be shown (no display,\n"
    "  or no GTK 3 on the machine).",
    RunChoose};

}  // namespace basicutils_tool
