// BasicUtils: the foundation library of the video-disc authoring tool.
//
// Including this one header gives a client every public class, free function
// and constant of the library, all in namespace basicutils. Ported client code
// writes `using namespace basicutils;` once and keeps its legacy spelling.
//
// Each subsystem keeps its own block below; add a header to the block of the
// folder it lives in, bottom layer first.
#pragma once

#include <basicutils/Export.h>

// platform: the thin layer over the operating system.
// (platform headers are listed here only where clients use them directly)
#include <basicutils/platform/CFile.h>
#include <basicutils/platform/CString.h>
#include <basicutils/platform/CodePage.h>
#include <basicutils/platform/Console.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/FileDialog.h>
#include <basicutils/platform/FileIo.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Modules.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/platform/RuntimeStream.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/VirtualMemory.h>
#include <basicutils/platform/WinApp.h>
#include <basicutils/platform/WinThread.h>

// text
#include <basicutils/text/CStringExtract.h>
#include <basicutils/text/CaseCompare.h>
#include <basicutils/text/MString.h>
#include <basicutils/text/MStringArray.h>
#include <basicutils/text/MStringList.h>
#include <basicutils/text/UStringUtils.h>
#include <basicutils/text/WideString.h>
// containers
#include <basicutils/containers/CVoidList.h>
#include <basicutils/containers/Handle.h>
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/containers/LComparator.h>
#include <basicutils/containers/LList.h>
#include <basicutils/containers/MemoryBlocks.h>
#include <basicutils/containers/UMemUtils.h>
// messaging
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/messaging/CThreadStatus.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <basicutils/messaging/LNotifier.h>
// time
#include <basicutils/time/CDateTime.h>
#include <basicutils/time/CDuration.h>
#include <basicutils/time/CTimecode.h>
#include <basicutils/time/CTimecodeList.h>
#include <basicutils/time/CTimecodeParser.h>
// bitstream
#include <basicutils/bitstream/ByteOrder.h>
#include <basicutils/bitstream/CAppBits.h>
#include <basicutils/bitstream/CAppBytes.h>
// files
#include <basicutils/files/AsyncReadBuffer.h>
#include <basicutils/files/MDirectory.h>
#include <basicutils/files/MFile.h>
#include <basicutils/files/MFileSpec.h>
#include <basicutils/files/MFileUniv.h>
#include <basicutils/files/MFileWin.h>
#include <basicutils/files/MFiles.h>
#include <basicutils/files/PathNames.h>
// tasks
#include <basicutils/tasks/CIdleProcess.h>
#include <basicutils/tasks/CThreadAction.h>
#include <basicutils/tasks/CVelmorantThread.h>
#include <basicutils/tasks/CVelmorantWinThread.h>
#include <basicutils/tasks/StGlobalLock.h>
// undo
#include <basicutils/undo/COperation.h>
// script
#include <basicutils/script/CScriptFile.h>
// environment
#include <basicutils/environment/CSharedLibrary.h>
#include <basicutils/environment/CVelmorantDirectories.h>
#include <basicutils/environment/CVelmorantProfile.h>
#include <basicutils/environment/CVersionControl.h>
#include <basicutils/environment/MFileDialog.h>
#include <basicutils/environment/MRect.h>
