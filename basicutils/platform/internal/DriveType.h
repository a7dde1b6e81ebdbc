// How a file system counts as a drive type (the rule is written in
// FileApi.h). Internal; exported for the tests only.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <string_view>

namespace basicutils::detail {

// The drive type of a mounted file system, by its type name as the mount
// table gives it ("ext4", "tmpfs", "fuse.sshfs"...) and whether it is
// mounted read-only.
BASICUTILS_EXPORT UINT DriveTypeFor(std::string_view fileSystem, bool readOnly);

}  // namespace basicutils::detail
