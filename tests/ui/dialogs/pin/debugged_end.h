// Looks into a process that ends, as a debugger does.
#pragma once

#include <windows.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "platform/handle.h"

namespace mvp::test {

// Runs a program under a debugger and returns its exit code. When it ends by ExitProcess, `look` is
// called twice with its process: before its modules are told, and after the last of them has been,
// while the memory still stands. (The event of a process that has exited comes too late for that on
// some systems: there is nothing to read any more.)
class DebuggedEnd {
public:
    explicit DebuggedEnd(std::function<void(HANDLE hProcess, bool bTold)> look)
        : m_look(std::move(look)) {}

    DWORD Run(std::string strCommand) {
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION info = {};
        if (!CreateProcessA(nullptr, strCommand.data(), nullptr, nullptr, FALSE,
                            DEBUG_ONLY_THIS_PROCESS, nullptr, nullptr, &startup, &info)) {
            throw std::runtime_error("the program could not be started");
        }
        m_process.reset(info.hProcess);
        const KernelHandle thread(info.hThread);
        for (DEBUG_EVENT event = {}; event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT;) {
            constexpr DWORD kDeadlineMs = 20000;
            if (!WaitForDebugEvent(&event, kDeadlineMs)) {
                TerminateProcess(m_process.get(), 1);
                throw std::runtime_error("the program did not end");
            }
            const DWORD status = Handle(event) ? DBG_CONTINUE : DBG_EXCEPTION_NOT_HANDLED;
            ContinueDebugEvent(event.dwProcessId, event.dwThreadId, status);
        }
        DWORD code = 0;
        WaitForSingleObject(m_process.get(), INFINITE);
        GetExitCodeProcess(m_process.get(), &code);
        return code;
    }

private:
    bool Handle(const DEBUG_EVENT& event) {
        if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
            const KernelHandle file(event.u.CreateProcessInfo.hFile);
        } else if (event.dwDebugEventCode == LOAD_DLL_DEBUG_EVENT) {
            const KernelHandle file(event.u.LoadDll.hFile);
        } else if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT) {
            const EXCEPTION_RECORD& record = event.u.Exception.ExceptionRecord;
            if (record.ExceptionCode != EXCEPTION_BREAKPOINT) {
                return false;
            }
            // The first is the system's own, of the start.
            record.ExceptionAddress == m_pBreak ? Stop(event.dwThreadId) : Break(m_pBreak);
        }
        return true;
    }

    void Break(void* pCode) {
        m_pBreak = pCode;
        ReadProcessMemory(m_process.get(), pCode, &m_original, 1, nullptr);
        Put(0xCC);
    }
    void Put(BYTE code) {
        DWORD old = 0;
        VirtualProtectEx(m_process.get(), m_pBreak, 1, PAGE_EXECUTE_READWRITE, &old);
        WriteProcessMemory(m_process.get(), m_pBreak, &code, 1, nullptr);
        VirtualProtectEx(m_process.get(), m_pBreak, 1, old, &old);
        FlushInstructionCache(m_process.get(), m_pBreak, 1);
    }
    // At the begin, and then where it returns to.
    void Stop(DWORD dwThread) {
        const KernelHandle thread(OpenThread(THREAD_ALL_ACCESS, FALSE, dwThread));
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_CONTROL;
        GetThreadContext(thread.get(), &context);
        context.Rip = reinterpret_cast<DWORD64>(m_pBreak);
        Put(m_original);
        m_look(m_process.get(), m_bTold);
        if (!std::exchange(m_bTold, true)) {
            void* back = nullptr;
            ReadProcessMemory(m_process.get(), reinterpret_cast<const void*>(context.Rsp), &back,
                              sizeof back, nullptr);
            Break(back);
        }
        SetThreadContext(thread.get(), &context);
    }

    std::function<void(HANDLE, bool)> m_look;
    KernelHandle m_process;
    // The system's modules lie at the same place in every process.
    void* m_pBreak = reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "LdrShutdownProcess"));
    BYTE m_original = 0;
    bool m_bTold = false;
};

}  // namespace mvp::test
