#pragma once

#include "common/platform/win32/windows.h"

#include <string>

namespace ZUNO::Tests {

/// A thread that waits for the message box of that title and presses one of its buttons.
class Presser {
public:
    Presser(const std::string& caption, WORD button)
        : mCaption(caption), mButton(button),
          mThread(CreateThread(nullptr, 0, run, this, 0, nullptr)) {}
    ~Presser() {
        wait();
        CloseHandle(mThread);
    }
    Presser(const Presser&) = delete;
    Presser& operator=(const Presser&) = delete;

    /// Whether there was a box with that button, once the box is gone.
    bool hadButton() {
        wait();
        return mHadButton;
    }

private:
    void wait() { WaitForSingleObject(mThread, INFINITE); }

    static DWORD WINAPI run(void* argument) {
        constexpr int attempts = 500;
        constexpr DWORD pause = 20; // ms
        auto& self = *static_cast<Presser*>(argument);
        HWND box = nullptr;
        for (int i = 0; i < attempts && box == nullptr; ++i, Sleep(pause))
            box = FindWindowA("#32770", self.mCaption.c_str());
        if (box == nullptr)
            return 1;
        self.mHadButton = GetDlgItem(box, self.mButton) != nullptr;
        PostMessageA(box, WM_COMMAND, MAKEWPARAM(self.mButton, BN_CLICKED), 0);
        return 0;
    }

    std::string mCaption;
    WORD mButton;
    bool mHadButton = false;
    HANDLE mThread;
};

} // namespace ZUNO::Tests
