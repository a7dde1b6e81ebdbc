#include <basicutils/environment/CVelmorantDirectories.h>
#include <basicutils/environment/CVelmorantProfile.h>
#include <basicutils/platform/Modules.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/text/WideString.h>

namespace basicutils {
namespace {

constexpr const char16_t* kSection = u"VELMORANT";
constexpr const char16_t* kScenarioKey = u"Scenario Directory";
constexpr const char16_t* kScriptKey = u"Script Directory";

// A folder, created (one level, silently) before it is returned.
MString Made(const MString& folder) {
    _wmkdir(folder);
    return folder;
}

MString Joined(const MString& a, const char16_t* b) {
    MString out(a);
    out += b;
    return out;
}

// The running program's path, or the empty string.
MString ProgramPath() {
    char16_t path[1024];
    const DWORD n = GetModuleFileNameW(nullptr, path, 1024);
    return n > 0 && n < 1024 ? MString(path) : MString();
}

struct PathParts {
    char16_t drive[_MAX_DRIVE];
    char16_t dir[_MAX_DIR];
    char16_t name[_MAX_FNAME];
    char16_t ext[_MAX_EXT];
    explicit PathParts(const char16_t* path) { _wsplitpath(path, drive, dir, name, ext); }
};

MString DataFile(const char16_t* name) {
    return Joined(CVelmorantDirectories::GetSupportDataDirectory(), name);
}

MString ByResolution(resolution_t resolution, const char16_t* ntsc, const char16_t* pal) {
    return DataFile(resolution == 0 ? ntsc : pal);
}

}  // namespace

MString CVelmorantDirectories::GetSystemDrive() {
    char16_t drive[260];
    const UINT n = GetSystemDriveW(drive, 260);
    return n > 0 && n < 260 ? MString(drive) : MString();
}

MString CVelmorantDirectories::GetSystemDirectoryW() {
    char16_t folder[260];
    const UINT n = ::basicutils::GetSystemDirectoryW(folder, 260);
    return Joined(n > 0 && n < 260 ? MString(folder) : MString(), u"\\");
}

MString CVelmorantDirectories::GetSystemDriverDirectory() {
    return Joined(GetSystemDirectoryW(), u"drivers\\");
}

MString CVelmorantDirectories::GetAppDirectory() {
    MString path = ProgramPath();
    const char16_t* slash = wcsrchr(static_cast<const char16_t*>(path), u'\\');
    if (!slash) return MString(u"Error");
    path.Cut(0, static_cast<int>(slash - static_cast<const char16_t*>(path)) + 1);
    return path;
}

MString CVelmorantDirectories::GetAppProfile() {
    MString path = ProgramPath();
    const char16_t* text = path;
    const char16_t* slash = wcsrchr(text, u'\\');
    if (!slash) return MString(u"Error");
    const char16_t* dot = wcsrchr(slash + 1, u'.');
    if (dot && dot > slash + 1) path.Cut(0, static_cast<int>(dot - text));
    path += u".ini";
    return path;
}

MString CVelmorantDirectories::GetProjectTemplateDirectory() {
    return Made(Joined(GetAppDirectory(), u"Project Templates\\"));
}

MString CVelmorantDirectories::GetDocumentationDirectory() {
    MString out;
    out.Format(u"%sDocumentation\\", static_cast<const char16_t*>(GetAppDirectory()));
    return out;
}

MString CVelmorantDirectories::GetSupportDataDirectory() {
    return Made(Joined(GetAppDirectory(), u"Data\\"));
}

MString CVelmorantDirectories::GetTemplateDirectory() {
    return Made(Joined(GetAppDirectory(), u"\\My Scenarios\\Templates\\"));
}

MString CVelmorantDirectories::GetScenarioDirectory() {
    const MString fallback = Joined(GetSystemDrive(), u"\\My Scenarios\\");
    const CString dir = CVelmorantProfile::GetProfileStringW(kSection, kScenarioKey, fallback);
    if (dir.IsEmpty()) return fallback;
    return Made(MString(dir));
}

MString CVelmorantDirectories::GetScriptDirectory() {
    const MString fallback = Joined(GetSystemDrive(), u"\\My Scenarios\\Script\\");
    return Made(MString(CVelmorantProfile::GetProfileStringW(kSection, kScriptKey, fallback)));
}

void CVelmorantDirectories::SetScenarioDirectory(const char16_t* path) {
    CVelmorantProfile::WriteProfileStringW(kSection, kScenarioKey, path);
}

void CVelmorantDirectories::SetScriptDirectory(const char16_t* path) {
    CVelmorantProfile::WriteProfileStringW(kSection, kScriptKey, path);
}

MString CVelmorantDirectories::GetTempDataDirectory(const char16_t* projectPath) {
    const PathParts parts(projectPath);
    MString out;
    out.Format(u"%s%s%s Cache", parts.drive, parts.dir, parts.name);
    return Made(Joined(out, u"\\"));
}

MString CVelmorantDirectories::GetSubtitleTextDirectory(const char16_t* projectPath) {
    return Made(Joined(GetTempDataDirectory(projectPath), u"Subtitle Files\\"));
}

MString CVelmorantDirectories::GetEncodedDataDirectory(const char16_t* projectPath) {
    return Made(Joined(GetTempDataDirectory(projectPath), u"Encoded Files\\"));
}

MString CVelmorantDirectories::GetEncodedJacketDataDirectory(const char16_t* projectPath) {
    return Made(Joined(GetEncodedDataDirectory(projectPath), u"Jacket Files\\"));
}

MString CVelmorantDirectories::GetDefaultSubPicBackgroundNTSCVideo() {
    return DataFile(u"defaultStill_NTSC.mps");
}

MString CVelmorantDirectories::GetDefaultSubPicBackgroundPALVideo() {
    return DataFile(u"defaultStill_PAL.mps");
}

MString CVelmorantDirectories::GetDefaultBackgroundImageFile(resolution_t resolution) {
    return ByResolution(resolution, u"bg_ntsc.mps", u"bg_pal.mps");
}

MString CVelmorantDirectories::GetPlaceHolderWarningMpegFile(resolution_t resolution) {
    return ByResolution(resolution, u"w_ph_ntsc.mps", u"w_ph_pal.mps");
}

MString CVelmorantDirectories::GetMissingVobWarningMpegFile(resolution_t resolution) {
    return ByResolution(resolution, u"w_vob_ntsc.mps", u"w_vob_pal.mps");
}

MString CVelmorantDirectories::GetPlaceHolderWarningVobFile(resolution_t resolution) {
    return ByResolution(resolution, u"w_ph_ntsc.vob", u"w_ph_pal.vob");
}

MString CVelmorantDirectories::GetMissingVobWarningVobFile(resolution_t resolution) {
    return ByResolution(resolution, u"w_vob_ntsc.vob", u"w_vob_pal.vob");
}

MString CVelmorantDirectories::GetDirectory(const char16_t* path) {
    const PathParts parts(path);
    MString out;
    out.Format(u"%s%s", parts.drive, parts.dir);
    return out;
}

MString CVelmorantDirectories::GetBody(const char16_t* path) {
    const PathParts parts(path);
    MString out;
    out.Format(u"%s%s%s", parts.drive, parts.dir, parts.name);
    return out;
}

}  // namespace basicutils
