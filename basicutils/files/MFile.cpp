#include <basicutils/files/MFile.h>

namespace basicutils {

MFile::~MFile() = default;

void MFile::SetFileSpec(MFileSpecWin& spec) {
    mFileSpec = spec;
}
MFileSpecWin& MFile::GetFileSpec() {
    return mFileSpec;
}
int MFile::FCreate() {
    return -1;
}
int MFile::FDelete() {
    return -1;
}
int MFile::FOpen(MFileSpecWin&, file_open_t) {
    return -1;
}
int MFile::FOpen(file_open_t) {
    return -1;
}
int MFile::FRead(char*, int) {
    return -1;
}
int MFile::FWrite(char*, int) {
    return -1;
}
int MFile::FSeek(int32_t, file_seek_t) {
    return -1;
}
int64_t MFile::FSeek64(int64_t, file_seek_t) {
    return -1;
}
int64_t MFile::FTell64(int64_t&) {
    return -1;
}
int MFile::FTell(int&) {
    return -1;
}
int MFile::FGets(char*, int) {
    return -1;
}
int MFile::FPuts(char*) {
    return -1;
}
void MFile::FClose() {}
int MFile::FStat(MFileSpecWin&, struct _stati64*) {
    return -1;
}
int MFile::FStat(struct _stati64*) {
    return -1;
}
CDateTime MFile::GetCreateTime() {
    return CDateTime(0.0);
}
CDateTime MFile::GetModifyTime() {
    return CDateTime(0.0);
}
CDateTime MFile::GetAccessTime() {
    return CDateTime(0.0);
}
int64_t MFile::GetSize() {
    return -1;
}
MString MFile::GetFilePath() {
    return GetFileSpec().GetFilePath();
}

bool MFile::FileExist(const MString& path) {
    return MFileSpecWin(path).FileExist();
}

}  // namespace basicutils
