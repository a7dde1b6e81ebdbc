// CThreadStatus: progress as broadcasts of a status record.
#include <basicutils/messaging/CThreadStatus.h>

namespace basicutils {

CThreadStatus::CThreadStatus() = default;

void CThreadStatus::Status(int64_t position, int64_t range, const char16_t* status) {
    sThreadStatus.BroadcastStatus(kStatusMaskStatus | kStatusMaskRange | kStatusMaskPosition,
                                  position, range, status, nullptr);
}
void CThreadStatus::SetStatus(const char16_t* status) {
    sThreadStatus.BroadcastStatus(kStatusMaskStatus, 0, 0, status, nullptr);
}
void CThreadStatus::SetRange(int64_t range, int32_t) {
    sThreadStatus.BroadcastStatus(kStatusMaskRange, 0, range, nullptr, nullptr);
}
void CThreadStatus::SetPosition(int64_t position) {
    sThreadStatus.BroadcastStatus(kStatusMaskPosition, position, 0, nullptr, nullptr);
}
void CThreadStatus::AdvancePosition(int64_t step) {
    sThreadStatus.BroadcastStatus(kStatusMaskAdvance, step, 0, nullptr, nullptr);
}
void CThreadStatus::SetDescription(const char16_t* description) {
    sThreadStatus.BroadcastStatus(kStatusMaskDescription, 0, 0, nullptr, description);
}
CThreadStatus* CThreadStatus::GetThreadStatus() {
    return &sThreadStatus;
}

void CThreadStatus::BroadcastStatus(int mask, int64_t position, int64_t range,
                                    const char16_t* status, const char16_t* description) {
    SThreadStatusInfo info{mask, position, range, MString(status ? status : u""),
                           MString(description ? description : u"")};
    BroadcastLocked(kMsgThreadStatus, &info);
}

}  // namespace basicutils
