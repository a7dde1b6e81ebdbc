// Win32 error numbers on POSIX: the per-thread slot, the errno table and the
// English texts.
#include <basicutils/platform/Errors.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace basicutils {

namespace {

thread_local uint32_t tLastError = ERROR_SUCCESS;

constexpr uint32_t kWaitTimeout = 258;  // WAIT_TIMEOUT, the result of a wait

struct ErrnoEntry {
    int errnum;
    uint32_t win32;
};

// errno on the left, the number a Windows caller would have seen for the same
// cause on the right. EINTR has no row: every call of the layer retries it, so
// it never reaches a caller. EAGAIN is a resource that is short for now, never
// a transfer under way (ERROR_IO_PENDING would send a caller to wait for a
// completion that never comes).
constexpr ErrnoEntry kErrnoTable[] = {
    {EPERM, ERROR_ACCESS_DENIED},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ESRCH, ERROR_NOT_FOUND},
    {EIO, ERROR_IO_DEVICE},
    {ENXIO, ERROR_FILE_NOT_FOUND},
    {E2BIG, ERROR_INVALID_PARAMETER},
    {ENOEXEC, ERROR_BAD_EXE_FORMAT},
    {EBADF, ERROR_INVALID_HANDLE},
    {ECHILD, ERROR_NOT_FOUND},
    {EAGAIN, ERROR_NOT_ENOUGH_QUOTA},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EACCES, ERROR_ACCESS_DENIED},
    {EFAULT, ERROR_NOACCESS},
    {EBUSY, ERROR_BUSY},
    {EEXIST, ERROR_FILE_EXISTS},
    {EXDEV, ERROR_NOT_SAME_DEVICE},
    {ENODEV, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EFBIG, ERROR_DISK_FULL},
    {ENOSPC, ERROR_DISK_FULL},
    {ESPIPE, ERROR_SEEK},
    {EROFS, ERROR_WRITE_PROTECT},
    {EMLINK, ERROR_TOO_MANY_LINKS},
    {EPIPE, ERROR_BROKEN_PIPE},
    {EDOM, ERROR_INVALID_PARAMETER},
    {ERANGE, ERROR_INVALID_PARAMETER},
    {EDEADLK, ERROR_LOCK_VIOLATION},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {ENOLCK, ERROR_LOCK_VIOLATION},
    {ENOSYS, ERROR_CALL_NOT_IMPLEMENTED},
    {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    {ELOOP, ERROR_CANT_RESOLVE_FILENAME},
    {EOVERFLOW, ERROR_INVALID_PARAMETER},
    {EILSEQ, ERROR_NO_UNICODE_TRANSLATION},
    {ENOTSUP, ERROR_NOT_SUPPORTED},
    {ETIMEDOUT, ERROR_TIMEOUT},
    {ECANCELED, ERROR_OPERATION_ABORTED},
    {EDQUOT, ERROR_DISK_FULL},
};

struct MessageEntry {
    uint32_t code;
    const char* text;  // 7-bit English, widened on demand
};

constexpr MessageEntry kMessages[] = {
    {ERROR_SUCCESS, "The operation completed successfully."},
    {ERROR_INVALID_FUNCTION, "Incorrect function."},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified."},
    {ERROR_TOO_MANY_OPEN_FILES, "The system cannot open the file."},
    {ERROR_ACCESS_DENIED, "Access is denied."},
    {ERROR_INVALID_HANDLE, "The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, "Not enough memory resources are available to process this command."},
    {ERROR_INVALID_DATA, "The data is invalid."},
    {ERROR_OUTOFMEMORY, "Not enough memory resources are available to complete this operation."},
    {ERROR_NOT_SAME_DEVICE, "The system cannot move the file to a different disk drive."},
    {ERROR_NO_MORE_FILES, "There are no more files."},
    {ERROR_WRITE_PROTECT, "The media is write protected."},
    {ERROR_NOT_READY, "The device is not ready."},
    {ERROR_SEEK, "The drive cannot locate a specific area or track on the disk."},
    {ERROR_WRITE_FAULT, "The system cannot write to the specified device."},
    {ERROR_READ_FAULT, "The system cannot read from the specified device."},
    {ERROR_GEN_FAILURE, "A device attached to the system is not functioning."},
    {ERROR_SHARING_VIOLATION,
     "The process cannot access the file because it is being used by another process."},
    {ERROR_LOCK_VIOLATION,
     "The process cannot access the file because another process has locked a portion of the "
     "file."},
    {ERROR_HANDLE_EOF, "Reached the end of the file."},
    {ERROR_HANDLE_DISK_FULL, "The disk is full."},
    {ERROR_NOT_SUPPORTED, "The request is not supported."},
    {ERROR_FILE_EXISTS, "The file exists."},
    {ERROR_INVALID_PARAMETER, "The parameter is incorrect."},
    {ERROR_BROKEN_PIPE, "The pipe has been ended."},
    {ERROR_OPEN_FAILED, "The system cannot open the device or file specified."},
    {ERROR_BUFFER_OVERFLOW, "The file name is too long."},
    {ERROR_DISK_FULL, "There is not enough space on the disk."},
    {ERROR_CALL_NOT_IMPLEMENTED, "This function is not supported on this system."},
    {ERROR_SEM_TIMEOUT, "The semaphore timeout period has expired."},
    {ERROR_INSUFFICIENT_BUFFER, "The data area passed to a system call is too small."},
    {ERROR_INVALID_NAME, "The filename, directory name, or volume label syntax is incorrect."},
    {ERROR_NEGATIVE_SEEK,
     "An attempt was made to move the file pointer before the beginning of the file."},
    {ERROR_MOD_NOT_FOUND, "The specified module could not be found."},
    {ERROR_PROC_NOT_FOUND, "The specified procedure could not be found."},
    {ERROR_DIR_NOT_EMPTY, "The directory is not empty."},
    {ERROR_BUSY, "The requested resource is in use."},
    {ERROR_ALREADY_EXISTS, "Cannot create a file when that file already exists."},
    {ERROR_BAD_EXE_FORMAT, "The file is not a valid application."},
    {ERROR_FILENAME_EXCED_RANGE, "The filename or extension is too long."},
    {kWaitTimeout, "The wait operation timed out."},
    {ERROR_NO_MORE_ITEMS, "No more data is available."},
    {ERROR_DIRECTORY, "The directory name is invalid."},
    {ERROR_NOT_OWNER, "Attempt to release mutex not owned by caller."},
    {ERROR_TOO_MANY_POSTS, "Too many posts were made to a semaphore."},
    {ERROR_MR_MID_NOT_FOUND,
     "The system cannot find message text for message number in the message file."},
    {ERROR_INVALID_ADDRESS, "Attempt to access invalid address."},
    {ERROR_OPERATION_ABORTED,
     "The I/O operation has been aborted because of either a thread exit or an application "
     "request."},
    {ERROR_IO_INCOMPLETE, "Overlapped I/O event is not in a signaled state."},
    {ERROR_IO_PENDING, "Overlapped I/O operation is in progress."},
    {ERROR_NOACCESS, "Invalid access to memory location."},
    {ERROR_INVALID_FLAGS, "Invalid flags."},
    {ERROR_NO_UNICODE_TRANSLATION,
     "No mapping for the Unicode character exists in the target multi-byte code page."},
    {ERROR_NOT_ENOUGH_QUOTA, "Not enough quota is available to process this command."},
    {ERROR_IO_DEVICE, "The request could not be performed because of an I/O device error."},
    {ERROR_TOO_MANY_LINKS,
     "An attempt was made to create more links on a file than the file "
     "system supports."},
    {ERROR_NOT_FOUND, "Element not found."},
    {ERROR_TIMEOUT, "This operation returned because the timeout period expired."},
    {ERROR_CANT_RESOLVE_FILENAME, "The name of the file cannot be resolved by the system."},
};

const char* FindMessage(uint32_t code) {
    for (const MessageEntry& e : kMessages)
        if (e.code == code) return e.text;
    return nullptr;
}

}  // namespace

uint32_t GetLastError() {
    return tLastError;
}

void SetLastError(uint32_t dwErrCode) {
    tLastError = dwErrCode;
}

uint32_t ErrnoToWin32Error(int errnum) {
    if (errnum == 0) return ERROR_SUCCESS;
    for (const ErrnoEntry& e : kErrnoTable)
        if (e.errnum == errnum) return e.win32;
    // EWOULDBLOCK and EOPNOTSUPP share their values with EAGAIN and ENOTSUP
    // on Linux, so they need no entries of their own.
    return ERROR_GEN_FAILURE;
}

uint32_t SetLastErrorFromErrno(int errnum) {
    uint32_t code = ErrnoToWin32Error(errnum);
    tLastError = code;
    return code;
}

std::u16string FormatMessageText(uint32_t dwMessageId) {
    const char* text = FindMessage(dwMessageId);
    if (!text) return std::u16string();
    std::u16string result;
    result.reserve(std::strlen(text) + 2);
    for (const char* p = text; *p; ++p) result.push_back(static_cast<char16_t>(*p));
    result += u"\r\n";
    return result;
}

uint32_t FormatMessageW(uint32_t dwFlags, const void* /*lpSource*/, uint32_t dwMessageId,
                        uint32_t /*dwLanguageId*/, char16_t* lpBuffer, uint32_t nSize,
                        void* /*Arguments*/) {
    if (!(dwFlags & FORMAT_MESSAGE_FROM_SYSTEM) ||
        (dwFlags & (FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_FROM_HMODULE)) || !lpBuffer) {
        tLastError = ERROR_INVALID_PARAMETER;
        return 0;
    }
    std::u16string text = FormatMessageText(dwMessageId);
    if (text.empty()) {
        tLastError = ERROR_MR_MID_NOT_FOUND;
        return 0;
    }
    const size_t units = text.size();
    if (dwFlags & FORMAT_MESSAGE_ALLOCATE_BUFFER) {
        size_t blockUnits = units + 1 > nSize ? units + 1 : nSize;
        auto* block = static_cast<char16_t*>(std::malloc(blockUnits * sizeof(char16_t)));
        if (!block) {
            tLastError = ERROR_NOT_ENOUGH_MEMORY;
            return 0;
        }
        std::memcpy(block, text.c_str(), (units + 1) * sizeof(char16_t));
        *reinterpret_cast<char16_t**>(lpBuffer) = block;
        return static_cast<uint32_t>(units);
    }
    if (nSize < units + 1) {
        tLastError = ERROR_INSUFFICIENT_BUFFER;
        return 0;
    }
    std::memcpy(lpBuffer, text.c_str(), (units + 1) * sizeof(char16_t));
    return static_cast<uint32_t>(units);
}

void* LocalFree(void* hMem) {
    std::free(hMem);
    return nullptr;
}

}  // namespace basicutils
