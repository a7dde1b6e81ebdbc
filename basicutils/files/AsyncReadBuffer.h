// AsyncReadBuffer: reads a file forward with one overlapped read always in
// flight, so that a client consuming one buffer finds the next one already
// read.
//
// It works on an MFileUniv that the client opened in an overlapped read mode
// and keeps owning. Two buffers form a ring: the current one holds the bytes
// that ReadBuffer hands out (mBufferPosition, mValidBytes), the other is
// being filled at mBufferPosition + mBufferSize. Each buffer comes from
// VirtualAlloc with mBufferSize + 4,096 bytes, its data area 2,048 bytes in:
// sector-widened reads land the part of the first sector before the wanted
// position in front of it and the rounding of the last sector behind it.
//
// InitReadBuffer(file, start, bufferSize, .) reads the first buffer from
// `start` and waits (120 seconds at most), then starts the read-ahead when
// the file has more. Answers 0; -2 no memory (no buffers afterwards); -3 the
// read failed (the read's own reports; no buffers afterwards); -4 `start` at
// or past the end (buffers kept, nothing read). A bufferSize that is a
// multiple of 2,048 keeps every read on the sector skew of `start`.
//
// ReadBuffer(position, destination, count) answers the bytes delivered, 0 at
// or past the end of the file, -1 on failure:
//   - in the current buffer: a copy;
//   - running past it: the part in it, then the buffers swap (waiting for the
//     read-ahead, 120 seconds at most) and the rest comes from the new one;
//     a short answer means the file ended, or the request was larger than a
//     buffer. If the swap fails the answer is -1 and the bytes already copied
//     do not count;
//   - before the current buffer: a private read around the ring, which
//     leaves the ring and its read-ahead untouched; a request that starts
//     before the buffer and reaches into it gets the rest from the buffer.
// A count of 0 or below is answered as it is, with nothing copied.
//
// FillInReadBuffer(filled) makes the read-ahead current and starts the next
// one: 0, or -1 when its wait fails or times out (nothing changed; a later
// call waits again) or the next read cannot start (the read's reports;
// mReadPending stays true with mPendingBytes 0). `filled` gets the bytes of
// the new current buffer, 0 when nothing was pending.
//
// Choices of this port:
//   - A read in flight is never abandoned: the destructor and a new
//     InitReadBuffer wait for the read-ahead to end before its buffer is
//     released or reused, and a private read whose 120-second wait ran out
//     is waited for before its block is freed. These waits have no deadline:
//     the read is in the engine, which ends every transfer, and freeing its
//     memory earlier would let it land in memory that is gone.
//   - A forward jump (a position behind the end of the current data) is
//     served with the bytes at that position, never with the start of the
//     next buffer: a position inside the read-ahead swaps to it; one further
//     away restarts the ring there, as InitReadBuffer would.
//   - A request that starts before the buffer and reaches past its data gets
//     no more than the buffer holds: the answer is short, as for any request
//     larger than a buffer, and nothing is copied from behind the data.
//   - A read whose completion says it failed, or delivered fewer bytes than
//     asked (the file shrank), counts as a failed read (-3 for InitReadBuffer
//     and for the private read, -1 for FillInReadBuffer) instead of handing
//     out bytes that never arrived. FillInReadBuffer then leaves the state of
//     a read that could not start; such a state makes the next call start
//     the read again instead of waiting for a read that is not there.
//   - Positions are compared in 64 bits, so any position is served; a
//     negative one answers -1.
//   - InitReadBuffer with a larger bufferSize than the buffers have replaces
//     them; an equal or smaller one reuses them. A bufferSize below 1 makes
//     no buffers: -2.
//   - Before the first InitReadBuffer, ReadBuffer and FillInReadBuffer answer
//     -1.
//
// One thread at a time per object. Copying is not allowed: the object owns
// its buffers and event.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/files/MFileUniv.h>
#include <basicutils/platform/FileIo.h>

#include <cstdint>

namespace basicutils {

class BASICUTILS_EXPORT AsyncReadBuffer {
  public:
    AsyncReadBuffer();
    AsyncReadBuffer(const AsyncReadBuffer&) = delete;
    AsyncReadBuffer& operator=(const AsyncReadBuffer&) = delete;
    virtual ~AsyncReadBuffer();

    virtual int FillInReadBuffer(int& filled);
    virtual int ReadBuffer(int64_t position, char* destination, int count);
    virtual int InitReadBuffer(MFileUniv* file, int64_t start, int bufferSize, int);

  protected:
    MFileUniv* mFile;
    char* mCurrentBuffer;
    char* mBufferOne;
    char* mBufferTwo;
    int mValidBytes;
    int mBufferSize;
    int64_t mBytesLeft;
    int64_t mFileSize;
    int64_t mBufferPosition;
    void* mEvent;
    bool mReadPending;
    int mPendingBytes;
    _OVERLAPPED mOverlapped;

  private:
    int DoReadPieceOutsideOfBuffer(int64_t position, char* destination, int count);
    // Starts the read-ahead into the free buffer: 0 or the read's error.
    uint32_t StartReadAhead();
    // Waits until the read-ahead in flight, if any, has ended.
    void SettleReadAhead();
    void ReleaseBuffers();
    char* FreeBuffer() const;
    int CopyOut(int64_t from, char* destination, int count) const;

    bool mInFlight = false;  // a read-ahead is in the engine
    int mAllocatedSize = 0;  // data area of the buffers that exist
};

}  // namespace basicutils
