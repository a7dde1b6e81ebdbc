// CThreadStatus: the process-wide progress channel.
//
// Each static call becomes one broadcast (29002) of an SThreadStatusInfo
// whose mMask says which fields are news; the others are zero or empty, and
// the texts are never null (a null text arrives empty). The channel keeps no
// progress of its own: an advance (mask 8) means whatever the listener that
// adds it up makes of it. Reports of several tasks mix in this one channel.
//
// Listeners run on the reporting thread, usually a worker. As with
// CMessageAction, registration through this class and the broadcasts share
// one recursive lock, so listeners can be attached and detached on another
// thread while tasks report; a listener must not wait for a thread that
// might be reporting.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/messaging/ChannelBroadcaster.h>
#include <basicutils/text/MString.h>

#include <cstdint>

namespace basicutils {

inline constexpr int32_t kMsgThreadStatus = 29002;

// Bits of SThreadStatusInfo::mMask.
inline constexpr int kStatusMaskStatus = 1;
inline constexpr int kStatusMaskRange = 2;
inline constexpr int kStatusMaskPosition = 4;
inline constexpr int kStatusMaskAdvance = 8;
inline constexpr int kStatusMaskDescription = 16;

struct SThreadStatusInfo {
    int mMask;
    int64_t mPosition;  // absolute with bit 4, a step with bit 8
    int64_t mRange;
    MString mStatus;
    MString mDescription;
};

class BASICUTILS_EXPORT CThreadStatus : public detail::ChannelBroadcaster {
  public:
    CThreadStatus();
    CThreadStatus(const CThreadStatus& other) = default;
    CThreadStatus& operator=(const CThreadStatus& other) = default;
    ~CThreadStatus() override = default;

    static void Status(int64_t position, int64_t range, const char16_t* status);
    static void SetStatus(const char16_t* status);
    // The second argument is accepted and not used.
    static void SetRange(int64_t range, int32_t unused = 0);
    static void SetPosition(int64_t position);
    static void AdvancePosition(int64_t step);
    static void SetDescription(const char16_t* description);
    static CThreadStatus* GetThreadStatus();

    void BroadcastStatus(int mask, int64_t position, int64_t range, const char16_t* status,
                         const char16_t* description);

    static CThreadStatus sThreadStatus;
};

}  // namespace basicutils
