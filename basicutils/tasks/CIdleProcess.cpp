// Idle processes: a self-emptying list of one-shot work.
#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/tasks/CIdleProcess.h>

namespace basicutils {

CIdleProcess::CIdleProcess() {
    gIdleProcesses.AddProcess(this);
}
CIdleProcess::~CIdleProcess() {
    gIdleProcesses.RemoveProcess(this);
}

void CIdleProcess::Execute() {
    ExecuteSelf();
    delete this;
}

void CIdleProcess::ExecuteSelf() {}

CIdleProcesses::CIdleProcesses() = default;

CIdleProcesses::~CIdleProcesses() {
    LListIterator iterator(mProcesses, 0);
    CIdleProcess* process = nullptr;
    while (iterator.Next(&process)) delete process;
}

void CIdleProcesses::AddProcess(CIdleProcess* process) {
    mProcesses.InsertItemsAt(1, kLastIndex, &process, 0);
}

void CIdleProcesses::RemoveProcess(CIdleProcess* process) {
    mProcesses.Remove(&process, 0);
}

void CIdleProcesses::ExecuteAll() {
    LListIterator iterator(mProcesses, 0);
    CIdleProcess* process = nullptr;
    while (iterator.Next(&process))
        if (process) process->Execute();
}

}  // namespace basicutils
